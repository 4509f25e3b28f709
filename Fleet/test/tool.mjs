// Runs quorlin-fleet as its users do.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { DuckDBInstance } from '@duckdb/node-api';
import { Lake } from '../lake.mjs';
import { Views } from '../views.mjs';

export const kTool = fileURLToPath(new URL('../quorlin-fleet', import.meta.url));
export const kQuorlin = process.env.QUORLIN;
export const kScratch = process.env.FLEET_SCRATCH;

export function scratch(name) {
    const folder = path.join(kScratch, name);
    fs.rmSync(folder, { recursive: true, force: true });
    fs.mkdirSync(folder, { recursive: true });
    return folder;
}

// { exitCode, signal, out, err }. `input` is for standard input.
export async function run(words, { input = '', ...options } = {}) {
    const child = spawn(kTool, words, { stdio: ['pipe', 'pipe', 'pipe'], ...options });
    let out = '', err = '';
    child.stdout.setEncoding('utf8').on('data', (data) => out += data);
    child.stderr.setEncoding('utf8').on('data', (data) => err += data);
    child.stdin.on('error', () => {});
    child.stdin.end(input);
    const [exitCode, signal] = await once(child, 'close');
    return { exitCode, signal, out, err };
}

export const ingestWords = (lake, words) => ['ingest', '--out', lake, '--quorlin', kQuorlin, ...words];

export async function ingest(lake, ...words) {
    const { exitCode, err } = await run(ingestWords(lake, words));
    if (exitCode !== 0) throw new Error(err);
    return err;
}

export async function query(lake, ...words) {
    const { exitCode, out, err } = await run(['query', '--lake', lake, '--format', 'json', ...words]);
    if (exitCode !== 0) throw new Error(err);
    return JSON.parse(out);
}

// What a lake has: for each dataset the number of its rows and a sum over them, whatever their order and shard. Null
// for an empty lake. It reads as query does, without a process of its own, as there are many to read.
export async function contents(folder) {
    const lake = new Lake(folder);
    if (lake.parts('machines').length === 0) return null;
    const instance = await DuckDBInstance.create(':memory:');
    const connection = await instance.connect();
    const views = new Views(connection, lake);
    await views.readNames();
    const selects = views.names().filter((name) => !['columns', 'identities'].includes(name)).map((name) =>
        `SELECT '${name}', count(*), sum(CAST(hash(t) AS HUGEINT)) FROM (SELECT * EXCLUDE (shard) FROM "${name}") t`);
    const statement = selects.join(' UNION ALL ');
    await views.make(statement);
    const rows = (await connection.runAndReadAll(statement)).getRows();
    connection.closeSync();
    instance.closeSync();
    return rows.map((row) => row.map(String));
}

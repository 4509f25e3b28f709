// Another engine reads the lake by the statements of README.md, and gives the same answers to all queries.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import { createRequire } from 'node:module';
import path from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { Fleet, kPlantedSerial } from './fleet.mjs';
import { generate } from './generate.mjs';
import { ingest, query, run, scratch } from './tool.mjs';

const top = fileURLToPath(new URL('..', import.meta.url));
const { Session } = createRequire(path.join(top, 'engines/'))('chdb');

// The statements for ClickHouse, with this lake's place and the view of machines repeated for the other datasets.
function statements(lake, datasets) {
    const readme = fs.readFileSync(path.join(top, 'README.md'), 'utf8');
    const [, block] = /```sql\n-- ClickHouse\n([^]*?)```/.exec(readme);
    const all = block.replaceAll('/lake', lake).split(';').map((text) => text.trim()).filter((text) => text !== '');
    const view = all.find((text) => text.startsWith('CREATE VIEW machines'));
    const others = all.filter((text) => !text.startsWith('CREATE VIEW'));
    const identities = fs.readFileSync(path.join(top, 'views/identities.sql'), 'utf8');
    const views = datasets.map((name) => view.replaceAll('machines', name));
    return [...others, ...views, `CREATE VIEW identities AS ${identities}`];
}

// One form of the values of both.
const plain = (value) => value === null ? null : String(value).replace(/^(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)\.0+$/, '$1');
const sorted = (rows) => rows.map((row) => JSON.stringify(row.map(plain))).sort();

test('the same answers by ClickHouse', async (t) => {
    const folder = scratch('engines');
    const lake = path.join(folder, 'lake');
    for (const day of [0, 1]) {
        const images = path.join(folder, String(day));
        generate(images, new Fleet(1000), day);
        fs.writeFileSync(path.join(images, 'empty.bin'), '');
        for (const shard of ['1/2', '2/2'])
            await ingest(lake, '--at', `2026-11-2${day}T12:30:00`, '--shard', shard, '--batch', '200', images);
    }
    const session = new Session(path.join(folder, 'clickhouse'));
    t.after(() => session.cleanup());
    const datasets = fs.readdirSync(lake).filter((name) => !name.startsWith('.'));
    for (const statement of statements(lake, datasets)) session.query(statement);
    const ask = (statement) => JSON.parse(session.query(statement, 'JSONCompact')).data;

    const names = fs.readdirSync(path.join(top, 'queries')).map((file) => file.slice(0, -4));
    for (const name of names)
        await t.test(name, async () => {
            const words = [...(name === 'find' ? ['--text', kPlantedSerial] : []), name];
            const { out } = await run(['query', '--lake', lake, '--print', ...words]);
            const rows = await query(lake, ...words);
            assert.ok(rows.length > 0);
            assert.deepEqual(sorted(ask(out)), sorted(rows.map(Object.values)));
        });
    await t.test('datasets', async () => {
        const counts = datasets.map((name) => `SELECT '${name}' AS dataset, count(*) AS count FROM "${name}"`);
        const statement = counts.join(' UNION ALL ');
        assert.deepEqual(sorted(ask(statement)), sorted((await query(lake, statement)).map(Object.values)));
    });
});

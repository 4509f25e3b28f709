import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { DuckDBInstance, StatementType } from '@duckdb/node-api';
import { parseWords, required } from './arguments.mjs';
import { BadUsage, Failure } from './failure.mjs';
import { Lake } from './lake.mjs';
import { kFormats, writeResult } from './output.mjs';
import { kNamed, statementOf } from './named.mjs';
import { Views } from './views.mjs';

const kParameters = {
    day: 'The day of a ready-made query (default: the newest of the lake)',
    from: 'The first of the two days that modules compares (default: the second newest)',
    to: 'The second one (default: the newest)',
    text: 'What find looks for',
};

const helpLine = (what, help) => `  ${what.padEnd(17)}${help}\n`;

export const kQueryHelp = () => `Queries a lake. Nothing is written into it.
Usage: quorlin-fleet query --lake LAKE [OPTIONS] NAME|SQL

  NAME|SQL         A ready-made query, a dataset (all its rows), or one SELECT of DuckDB's SQL

  --lake LAKE      The lake's folder
  --format FORMAT  table (for people), json or csv (default: table)
  --memory SIZE    How much memory DuckDB may take, such as 8GB (default: 1GB); what doesn't fit goes to the disk
  --print          Print the SQL of a ready-made query, for other engines, and don't run it
${Object.entries(kParameters).map(([name, help]) => helpLine(`--${name} ${name.toUpperCase()}`, help)).join('')}
Ready-made queries:
${[...kNamed].map(([name, { help }]) => helpLine(name, help)).join('')}
Datasets: machines, strings, findings, rejects, columns, and one for each structure type, such as memory_device. The
view identities tells which machine an image is of: day, record, machine_id.
`;

const kOptions = {
    lake: { type: 'string' },
    format: { type: 'string', default: 'table' },
    memory: { type: 'string', default: '1GB' },
    print: { type: 'boolean', default: false },
    ...Object.fromEntries(Object.keys(kParameters).map((name) => [name, { type: 'string' }])),
};
const kOneSelect = 'a query is one SELECT';

function openLake(folder) {
    if (!fs.existsSync(folder)) throw new Failure(`${folder}: no such lake`);
    if (!fs.statSync(folder).isDirectory()) throw new Failure(`${folder}: not a folder`);
    const lake = new Lake(folder);
    if (lake.parts('machines').length === 0) throw new Failure(`${folder}: the lake is empty`);
    return lake;
}

// The values of a query's parameters.
function valuesOf(names, options, days) {
    const values = {};
    const unused = Object.keys(kParameters).find((name) => options[name] !== undefined && !names.includes(name));
    if (unused) throw new BadUsage(`this query has no --${unused}`);
    const defaults = { day: days.at(-1), from: days.at(-2), to: days.at(-1) };
    for (const name of names) {
        const value = options[name] ?? defaults[name];
        if (value === undefined && name === 'from') throw new Failure(`the lake has one day only, ${days[0]}`);
        if (value === undefined) throw new BadUsage(`--${name} is missing`);
        if (name !== 'text' && !days.includes(value)) {
            const all = days.length === 1 ? days[0] : `${days.length} days from ${days[0]} to ${days.at(-1)}`;
            throw new Failure(`--${name}: the lake has nothing of ${value}; it has ${all}`);
        }
        values[name] = value;
    }
    return values;
}

async function run(connection, statement) {
    const statements = await connection.extractStatements(statement);
    if (statements.count !== 1) throw new BadUsage(kOneSelect);
    const prepared = await statements.prepare(0);
    if (prepared.statementType !== StatementType.SELECT) throw new BadUsage(kOneSelect);
    return prepared.stream();
}

export async function query(words) {
    const options = parseWords(words, kOptions, 'name of a query or SQL, in quotes');
    if (!Object.hasOwn(kFormats, options.format))
        throw new BadUsage(`--format: '${options.format}' is not table, json or csv`);
    if (!/^[1-9]\d*(\.\d+)?[MG]B$/.test(options.memory))
        throw new BadUsage(`--memory: '${options.memory}' is not a size such as 8GB`);
    const lake = openLake(required(options, 'lake'));
    // A folder for what doesn't fit into memory; DuckDB makes and removes it.
    const temporary = path.join(os.tmpdir(), `quorlin-fleet-${process.pid}`);
    const instance = await DuckDBInstance.create(':memory:', {
        memory_limit: options.memory, temp_directory: temporary,
        autoinstall_known_extensions: 'false', autoload_known_extensions: 'false',
    });
    const connection = await instance.connect();
    try {
        const views = new Views(connection, lake);
        await views.readNames();
        let statement = options.argument, parameters = [];
        if (/^\s*\w+\s*$/.test(statement)) {
            const name = statement.trim().toLowerCase();
            if (kNamed.has(name)) ({ statement, parameters } = kNamed.get(name));
            else if (views.names().includes(name)) statement = `SELECT * FROM "${name}"`;
            else throw new BadUsage(`no query or dataset is called '${name}'; there are ` +
                [...kNamed.keys(), ...views.names()].join(', '));
        }
        statement = statementOf(statement, valuesOf(parameters, options, views.days()));
        if (options.print) return void process.stdout.write(statement);
        await views.make(statement);
        await writeResult(await run(connection, statement), options.format);
    } finally {
        connection.closeSync();
        instance.closeSync();
        fs.rmSync(temporary, { recursive: true, force: true });
    }
}

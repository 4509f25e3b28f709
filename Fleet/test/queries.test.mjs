// Every ready-made query equals a plain computation over the truth of a fleet of two days.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { before, test } from 'node:test';
import { Fleet, kPlantedSerial } from './fleet.mjs';
import { generate } from './generate.mjs';
import * as truth from './truth.mjs';
import { ingest, query, scratch } from './tool.mjs';

const kDates = ['2026-11-25', '2026-11-26'];
const kFleet = new Fleet(2000);
const kRejects = {
    'empty.bin': ['', 'empty'],
    'text.bin': ['This is no table.\n', 'not a table'],
};

const folder = scratch('queries');
const lake = path.join(folder, 'lake');
const days = [0, 1].map((day) => [...kFleet.machines(day)]);
const idOf = truth.identities(days);

before(async () => {
    for (const day of [0, 1]) {
        const images = path.join(folder, String(day));
        generate(images, kFleet, day);
        const rejects = day === 1 ? Object.entries(kRejects) : [];
        for (const [name, [content]] of rejects) fs.writeFileSync(path.join(images, name), content);
        await ingest(lake, '--at', kDates[day], '--batch', '300', images);
    }
});

// Rows that don't depend on the folder, and that sort alike.
const sorted = (rows) => rows.map((row) => JSON.stringify(row)).sort();
function relative(rows) {
    const strip = (value) => typeof value === 'string' && value.startsWith(folder) ? value.slice(folder.length + 3)
        : typeof value === 'string' && value.startsWith('table:') ? 'table:' : value;
    return rows.map((row) => Object.fromEntries(Object.entries(row).map(([key, value]) => [key, strip(value)])));
}

async function equals(expected, ...words) {
    assert.ok(expected.length > 0, 'the truth has such rows');
    assert.deepEqual(sorted(relative(await query(lake, ...words))), sorted(expected));
}

const kAtATime = { concurrency: 2 };
for (const day of [0, 1]) {
    const machines = days[day];
    const words = day === 1 ? [] : ['--day', kDates[day]];
    test(`queries of ${day === 1 ? 'the newest day' : 'a day'}`, kAtATime, async (t) => {
        await Promise.all([
            t.test('inventory', () => equals(truth.inventory(machines, idOf), ...words, 'inventory')),
            t.test('models', () => equals(truth.models(machines), ...words, 'models')),
            t.test('firmware', () => equals(truth.firmware(machines), ...words, 'firmware')),
            t.test('duplicates', () => equals(truth.duplicates(machines), ...words, 'duplicates')),
            t.test('fillers', () => equals(truth.fillers(machines), ...words, 'fillers')),
            t.test('outliers', () => equals(truth.outliers(machines, idOf), ...words, 'outliers')),
            t.test('findings', async () => {
                const rows = await query(lake, ...words, 'findings');
                assert.deepEqual(sorted(rows.map(({ example, ...row }) => row)), sorted(truth.findings(machines)));
            }),
            t.test('find', () => {
                const machine = machines.find(({ systemSerial }) => systemSerial === kPlantedSerial);
                return equals([{ machine_id: idOf(machine), source: machine.name, type: 1, handle: 1, number: 3,
                    string: kPlantedSerial }], ...words, '--text', kPlantedSerial, 'find');
            }),
        ]);
    });
}

test('collisions', () => equals(truth.collisions(days, kDates, idOf), 'collisions'));

test('modules, forwards and backwards', async (t) => {
    const there = truth.modules(days, idOf);
    for (const change of ['lost', 'added', 'moved', 'replaced'])
        assert.ok(there.some((row) => row.change === change), `the truth has ${change} modules`);
    await equals(there, 'modules');
    const backwards = truth.modules([days[1], days[0]], idOf);
    await equals(backwards, '--from', kDates[1], '--to', kDates[0], 'modules');
});

test('days', async () => {
    const expected = days.map((machines, day) => ({ day: kDates[day], shards: 1, machines: machines.length,
        first_at: `${kDates[day]} 00:00:00`, last_at: `${kDates[day]} 00:00:00` }));
    assert.deepEqual(await query(lake, 'days'), expected);
});

test('rejects are exact', async () => {
    const rows = await query(lake, 'SELECT source, reason, CAST(day AS VARCHAR) AS day FROM rejects ORDER BY source');
    assert.deepEqual(rows.map(({ source }) => path.basename(source)), Object.keys(kRejects));
    assert.ok(rows.every(({ day }) => day === kDates[1]));
    rows.forEach(({ reason }, place) => assert.match(reason, new RegExp(Object.values(kRejects)[place][1])));
});

test('typed columns', async () => {
    const modules = days[1].flatMap(({ slots }) => slots);
    const [row] = await query(lake, `
        SELECT count(*) AS slots, sum(memory_size) AS bytes, count(serial_number) AS serials
        FROM memory_device WHERE day = DATE '${kDates[1]}'`);
    const bytes = modules.reduce((sum, { module }) => sum + (module?.bytes ?? 0), 0);
    const serials = modules.filter(({ module }) => module?.serial).length;
    assert.deepEqual(row, { slots: modules.length, bytes, serials });
});

// Many tables, with figures:
//
//     node scale.mjs COUNT
//
// Makes the images of a fleet, ingests them as two days, checks what comes out, and prints times and memory.
// FLEET_IMAGES is a folder for the images, such as one in memory, as some disks take long to delete millions of files.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import path from 'node:path';
import { Fleet, kPlantedSerial } from './fleet.mjs';
import { generate } from './generate.mjs';
import { ingestWords, kScratch, kTool, query, scratch } from './tool.mjs';

const kMostMemory = 2 * 2 ** 30;
const kDates = ['2026-11-25', '2026-11-26'];
const count = Number(process.argv[2]);
const fleet = new Fleet(count);

// Memory in use by a process and all that it started, in bytes; shared pages count for each of them.
function memoryOf(root) {
    const parents = new Map(), sizes = new Map();
    for (const pid of fs.readdirSync('/proc')) {
        if (!/^\d+$/.test(pid)) continue;
        try {
            const status = fs.readFileSync(`/proc/${pid}/status`, 'latin1');
            parents.set(Number(pid), Number(/^PPid:\s+(\d+)/m.exec(status)[1]));
            sizes.set(Number(pid), Number(/^VmRSS:\s+(\d+)/m.exec(status)?.[1] ?? 0) * 1024);
        } catch { /* it has ended */ }
    }
    let sum = 0;
    for (const pid of sizes.keys()) {
        let ancestor = pid;
        while (ancestor > 1 && ancestor !== root) ancestor = parents.get(ancestor) ?? 0;
        if (ancestor === root) sum += sizes.get(pid);
    }
    return sum;
}

// { seconds, samples: memory over time, out: the number of lines }
async function measure(words) {
    const start = performance.now();
    const child = spawn(kTool, words, { stdio: ['ignore', 'pipe', 'inherit'] });
    let lines = 0;
    child.stdout.on('data', (data) => { for (const byte of data) if (byte === 0x0a) lines++; });
    const samples = [];
    const timer = setInterval(() => samples.push(memoryOf(child.pid)), 100);
    const [exitCode] = await once(child, 'close');
    clearInterval(timer);
    assert.equal(exitCode, 0);
    return { seconds: (performance.now() - start) / 1000, samples, lines };
}

const mib = (bytes) => Math.round(bytes / 2 ** 20);
const peak = (samples) => samples.reduce((most, size) => Math.max(most, size), 0);
// The peaks of the tenths of a run.
const tenths = (samples) => Array.from({ length: 10 }, (_, tenth) =>
    peak(samples.slice(Math.floor(samples.length * tenth / 10), Math.ceil(samples.length * (tenth + 1) / 10))));

function sizeOf(folder) {
    let bytes = 0, files = 0;
    for (const entry of fs.readdirSync(folder, { withFileTypes: true })) {
        const its = entry.isDirectory() ? sizeOf(path.join(folder, entry.name))
            : { bytes: fs.statSync(path.join(folder, entry.name)).size, files: 1 };
        bytes += its.bytes;
        files += its.files;
    }
    return { bytes, files };
}

function checkSpace() {
    const { bavail, bsize, ffree } = fs.statfsSync(kScratch);
    const needed = { bytes: count * (2 * 4096 + 1500), files: count * 2.01 + 10_000 };
    if (bavail * bsize < needed.bytes || ffree < needed.files)
        throw new Error(`too little space: this needs ${mib(needed.bytes)} MiB and ${needed.files} files`);
}

// What the lake must have of a day, counted one machine at a time.
function totals(day) {
    const sums = { machines: 0, slots: 0, modules: 0, bytes: 0n, processors: 0, cores: 0, uuids: 0, serials: 0 };
    for (const machine of fleet.machines(day)) {
        sums.machines++;
        sums.slots += machine.slots.length;
        sums.modules += machine.memoryModules;
        sums.bytes += BigInt(machine.memoryBytes);
        sums.processors += machine.processors;
        sums.cores += machine.cores;
        if (machine.uuid !== null) sums.uuids++;
        if (machine.systemSerial !== null) sums.serials++;
    }
    return { ...sums, bytes: Number(sums.bytes) };
}

async function lakeTotals(lake, day) {
    const date = `day = DATE '${kDates[day]}'`;
    const [row] = await query(lake, `
        SELECT m.machines, d.slots, d.modules, d.bytes, p.processors, m.cores, m.uuids, m.serials
        FROM (SELECT count(*) AS machines, sum(cores) AS cores, count(uuid) AS uuids,
                     count(system_serial_number) AS serials
              FROM machines WHERE ${date}) m,
             (SELECT count(*) AS slots, count(memory_size) AS modules, sum(memory_size) AS bytes
              FROM memory_device WHERE ${date}) d,
             (SELECT count(*) AS processors FROM processor_information WHERE ${date}) p`);
    return row;
}

const rows = [];
const report = (what, ...values) => rows.push([what, ...values]);

checkSpace();
const folder = scratch('scale');
const lake = path.join(folder, 'lake');
const imageFolder = process.env.FLEET_IMAGES ?? folder;
for (const day of [0, 1]) {
    const images = path.join(imageFolder, String(day));
    const start = performance.now();
    const made = generate(images, fleet, day);
    const seconds = (performance.now() - start) / 1000;
    const name = `day ${day + 1}`;
    const each = Math.round(made.bytes / made.count);
    report(`${name}: images made`, made.count, `${each} bytes each, ${seconds.toFixed(0)} s`);

    const before = fs.existsSync(lake) ? sizeOf(lake) : { bytes: 0, files: 0 };
    const run = await measure(ingestWords(lake, ['--workers', '2', '--at', kDates[day], images]));
    const after = sizeOf(lake);
    const peaks = tenths(run.samples);
    const rate = Math.round(made.count / run.seconds);
    report(`${name}: ingested`, made.count, `${run.seconds.toFixed(1)} s, ${rate} tables a second`);
    report(`${name}: Parquet`, after.bytes - before.bytes,
        `${((after.bytes - before.bytes) / made.count).toFixed(0)} bytes a table, ${after.files - before.files} files`);
    report(`${name}: peak memory`, `${mib(peak(peaks))} MiB`, `by tenths of the run: ${peaks.map(mib).join(', ')}`);
    assert.ok(peak(peaks) <= kMostMemory, 'ingest takes at most 2 GiB');
    if (count >= 100_000)
        assert.ok(peak(peaks.slice(5)) <= 1.5 * peak(peaks.slice(0, 5)), 'the memory of ingest is flat');
    assert.deepEqual(await lakeTotals(lake, day), totals(day));
    assert.deepEqual(await query(lake, 'SELECT count(*) AS rejects FROM rejects'), [{ rejects: 0 }]);
    fs.rmSync(images, { recursive: true });
}
const found = await query(lake, '--text', kPlantedSerial, 'find');
assert.deepEqual(found.map(({ source }) => source), [path.join(imageFolder, '1', fleet.nameOf(fleet.planted))]);

for (const file of fs.readdirSync(new URL('../queries/', import.meta.url)).sort()) {
    const name = file.slice(0, -4);
    const words = [...(name === 'find' ? ['--text', kPlantedSerial] : []), name];
    const run = await measure(['query', '--lake', lake, '--format', 'csv', ...words]);
    report(`query ${name}`, run.lines - 1, `${run.seconds.toFixed(2)} s, ${mib(peak(run.samples))} MiB`);
    assert.ok(peak(run.samples) <= kMostMemory, `${name} takes at most 2 GiB`);
}

console.log('\n| what | count | figures |\n|---|---:|---|');
for (const row of rows) console.log(`| ${row.join(' | ')} |`);
console.log(`\nAll counts are exact, and the planted serial number was found, in the tables of ${count} machines.`);

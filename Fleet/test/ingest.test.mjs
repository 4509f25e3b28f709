// What an ingest leaves in the lake: after kills, by shards, from odd names, and after failures.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import path from 'node:path';
import { before, test } from 'node:test';
import { setTimeout } from 'node:timers/promises';
import { fileURLToPath } from 'node:url';
import { isDeepStrictEqual } from 'node:util';
import { Fleet } from './fleet.mjs';
import { generate } from './generate.mjs';
import { imageOf } from './table.mjs';
import { contents, ingest, ingestWords, kQuorlin, kTool, query, run, scratch } from './tool.mjs';

const kDay = '2026-11-26';
const kFleet = new Fleet(60);
const folder = scratch('ingest');
const images = path.join(folder, 'images'), otherImages = path.join(folder, 'other-images');
const words = ['--at', kDay, '--workers', '2', '--batch', '30'];
let whole, other;

// In a folder of its own, so that nothing else is there.
const newLake = (name) => path.join(scratch(path.join('ingest', name)), 'lake');

before(async () => {
    generate(images, kFleet, 0);
    generate(otherImages, kFleet, 1);
    fs.writeFileSync(path.join(images, 'empty.bin'), '');
    const lakes = [newLake('whole'), newLake('other')];
    await ingest(lakes[0], ...words, images);
    await ingest(lakes[1], ...words, otherImages);
    [whole, other] = [await contents(lakes[0]), await contents(lakes[1])];
    assert.notDeepEqual(whole, other);
});

const hook = fileURLToPath(new URL('kill.cjs', import.meta.url));
const runHooked = (lake, variables, itsWords) => run(ingestWords(lake, itsWords),
    { detached: true, env: { ...process.env, NODE_OPTIONS: `--require "${hook}"`, ...variables } });

// Not the calls of fsync, nor those that remove or make what mostly is as it should be.
const kCounts = new RegExp('^(spawn|rename|writeFile|openSync .*\\.(new|parquet)$|mkdirSync lake|' +
    'mkdirSync .*(SHARD|DATASET|old)$|rmSync .*(gone|BATCH)$)');

// The steps of an ingest, one of each kind. Of steps that come again and again, it is one from the middle.
async function stepsOf(lake, itsWords) {
    const file = path.join(folder, 'steps.log');
    fs.rmSync(file, { force: true });
    const { exitCode, err } = await runHooked(lake, { KILL_LOG: file }, itsWords);
    assert.equal(exitCode, 0, err);
    const counts = new Map();
    for (const kind of fs.readFileSync(file, 'utf8').trim().split('\n')) counts.set(kind, (counts.get(kind) ?? 0) + 1);
    const chosen = [...counts].filter(([kind]) => kCounts.test(kind));
    return chosen.map(([kind, count]) => `${kind} #${Math.ceil(count / 2)}`);
}

// Two at a time. `check` gets the lake of a killed ingest.
async function killAtEach(steps, prepare, itsWords, check) {
    const todo = [...steps.entries()];
    const work = async () => {
        for (let next; (next = todo.shift()) !== undefined;) {
            const [place, step] = next;
            const lake = newLake(`kill-${place}`);
            await prepare(lake);
            const { signal, err } = await runHooked(lake, { KILL_AT: step }, itsWords);
            assert.equal(signal, 'SIGKILL', `${step}: ${err}`);
            await check(lake, step);
            await ingest(lake, ...itsWords);
            assert.deepEqual(await contents(lake), whole, `the rows after a kill at ${step}`);
            assert.deepEqual(fs.readdirSync(path.join(lake, '.staging')), [`day=${kDay},shard=1-of-1.lock`], step);
            fs.rmSync(path.dirname(lake), { recursive: true });
        }
    };
    await Promise.all([work(), work()]);
}

test('kill -9 at each kind of step, and again', async (t) => {
    const itsWords = [...words, images];
    const steps = await stepsOf(newLake('steps'), itsWords);
    t.diagnostic(`${steps.length} steps`);
    assert.ok(steps.length >= 20);
    await killAtEach(steps, () => {}, itsWords, async (lake, step) => {
        const between = await contents(lake);
        if (between !== null) assert.deepEqual(between, whole, `the rows between, at ${step}`);
    });
});

test('kill -9 of an ingest that replaces another', async (t) => {
    const itsWords = [...words, '--replace', images];
    const prepare = (lake) => ingest(lake, ...words, otherImages);
    const first = newLake('steps-of-replace');
    await prepare(first);
    const steps = (await stepsOf(first, itsWords)).filter((step) => /old|placing|lake\//.test(step));
    t.diagnostic(`${steps.length} steps`);
    assert.ok(steps.length >= 6);
    await killAtEach(steps, prepare, itsWords, async (lake, step) => {
        const between = await contents(lake);
        if (between !== null && !isDeepStrictEqual(between, other))
            assert.deepEqual(between, whole, `a mixture at ${step}`);
    });
});

test('finished batches are not read again', async () => {
    const lake = newLake('finished');
    const program = path.join(folder, 'counting-quorlin');
    fs.writeFileSync(program, `#!/bin/sh\necho run >>'${lake}.runs'\nexec '${kQuorlin}' "$@"\n`, { mode: 0o755 });
    const itsWords = [...words, '--workers', '1', '--quorlin', program, images];
    await runHooked(lake, { KILL_AT: 'spawn counting-quorlin #2' }, itsWords);
    await ingest(lake, ...itsWords);
    assert.deepEqual(await contents(lake), whole);
    const runs = fs.readFileSync(`${lake}.runs`, 'utf8').trim().split('\n').length;
    assert.ok(runs === 2 || runs === 3, `${runs} runs for 2 batches, the last one killed at its start`);
});

test('two shards equal one, and need nothing of each other', async () => {
    const lakes = [newLake('shards'), newLake('first-shard'), newLake('second-shard')];
    const shards = ['1/2', '2/2'];
    await Promise.all(shards.map((shard) => ingest(lakes[0], ...words, '--shard', shard, images)));
    assert.deepEqual(await contents(lakes[0]), whole);
    // On two machines, whose lakes are then copied together.
    for (const [place, shard] of shards.entries()) await ingest(lakes[place + 1], ...words, '--shard', shard, images);
    fs.cpSync(lakes[2], lakes[1], { recursive: true });
    assert.deepEqual(await contents(lakes[1]), whole);
    // Each shard has about half of the images, and the number of shards can't change.
    const sizes = await query(lakes[0], 'SELECT count(*) AS count FROM machines GROUP BY shard');
    assert.ok(sizes.length === 2 && sizes.every(({ count }) => count > 15), JSON.stringify(sizes));
    const { exitCode, err } = await run(ingestWords(lakes[0], [...words, '--shard', '1/3', images]));
    assert.equal(exitCode, 1);
    assert.match(err, /another number of shards/);
});

test('a day is replaced only on request', async () => {
    const lake = newLake('replace');
    await ingest(lake, ...words, otherImages);
    assert.match(await ingest(lake, ...words, otherImages), /is in the lake already/);
    const { exitCode, err } = await run(ingestWords(lake, [...words, images]));
    assert.equal(exitCode, 1);
    assert.match(err, /has other images.*--replace/);
    assert.deepEqual(await contents(lake), other);
    await ingest(lake, ...words, '--replace', images);
    assert.deepEqual(await contents(lake), whole);
});

test('a second ingest of the same shard is refused', async () => {
    const lake = newLake('lock');
    fs.mkdirSync(path.join(lake, '.staging'), { recursive: true });
    const file = path.join(lake, `.staging/day=${kDay},shard=1-of-1.lock`);
    const holder = spawn('flock', [file, 'sh', '-c', 'echo; exec cat'], { stdio: ['pipe', 'pipe', 'ignore'] });
    await once(holder.stdout, 'data');
    const { exitCode, err } = await run(ingestWords(lake, [...words, images]));
    holder.stdin.end();
    assert.equal(exitCode, 1);
    assert.equal(err, 'quorlin-fleet: another ingest of this shard and day is running\n');
});

test('names of any bytes', async () => {
    const lake = newLake('names');
    const place = path.join(folder, 'odd "names"');
    fs.mkdirSync(path.join(place, "sub 'folder'"), { recursive: true });
    const names = ["quote'd.bin", 'double "quoted".bin', 'two\nlines.bin', 'return\r', ' blanks , commas ', '-x',
        'ünïcode ✓', "sub 'folder'/deep.bin", 'x'.repeat(255)];
    const machines = [...kFleet.machines(0)];
    names.forEach((name, index) => fs.writeFileSync(path.join(place, name), imageOf(machines[index])));
    fs.symlinkSync(path.join(place, '-x'), path.join(place, 'link'));
    fs.symlinkSync('nowhere', path.join(place, 'broken link'));
    fs.symlinkSync('.', path.join(place, 'folder link'));
    fs.writeFileSync(Buffer.concat([Buffer.from(`${place}/bytes `), Buffer.of(0xff, 0xfe)]), imageOf(machines[20]));
    await ingest(lake, ...words, place);
    // quorlin writes controls as blanks, and drops blanks at the end.
    const shown = (name) => name.replace(/[\r\n]/, ' ').trimEnd();
    const expected = [...names, 'link', 'bytes \ufffd\ufffd'].map(shown).sort();
    const sources = async (dataset) => (await query(lake, `SELECT source FROM ${dataset}`))
        .map(({ source }) => path.relative(place, source)).sort();
    assert.deepEqual(await sources('machines'), expected);
    assert.deepEqual(await sources('rejects'), ['broken link']);
});

test('lists, each image once', async () => {
    const lake = newLake('list');
    const all = [...kFleet.machines(0)].map(({ name }) => path.join(images, name));
    const list = `${[...all, '', ...all, path.join(images, 'empty.bin')].join('\r\n')}`;
    const { exitCode, err } = await run(ingestWords(lake, [...words, '-']), { input: list });
    assert.equal(exitCode, 0, err);
    assert.match(err, new RegExp(`${all.length} tables, 1 rejects`));
    assert.deepEqual(await contents(lake), whole);
});

test('a quorlin that fails stops the ingest, which goes on with one that works', async () => {
    const lake = newLake('failure');
    const program = path.join(folder, 'failing-quorlin');
    const failures = [['kill -SEGV $$', /ended by SIGSEGV/], ['echo no space >&2; exit 1', /quorlin: no space/]];
    for (const [what, expected] of failures) {
        fs.writeFileSync(program, `#!/bin/sh\n${what}\n`, { mode: 0o755 });
        const { exitCode, err } = await run(ingestWords(lake, [...words, '--quorlin', program, images]));
        assert.equal(exitCode, 1);
        assert.match(err, expected);
        assert.equal(err.trim().split('\n').length, 1);
    }
    await ingest(lake, ...words, images);
    assert.deepEqual(await contents(lake), whole);
});

test('an ingest that is asked to end takes its processes with it', async () => {
    const lake = newLake('term');
    const program = path.join(folder, 'slow-quorlin');
    fs.writeFileSync(program, '#!/bin/sh\necho $$ >"$0.pid"\nexec sleep 60\n', { mode: 0o755 });
    fs.rmSync(`${program}.pid`, { force: true });
    const itsWords = ingestWords(lake, [...words, '--workers', '1', '--quorlin', program, images]);
    const child = spawn(kTool, itsWords, { stdio: 'ignore' });
    const content = (file) => fs.existsSync(file) ? fs.readFileSync(file, 'utf8') : '';
    while (content(`${program}.pid`) === '') await setTimeout(20);
    const pid = Number(content(`${program}.pid`));
    child.kill('SIGTERM');
    const [, signal] = await once(child, 'exit');
    assert.equal(signal, 'SIGTERM');
    // A process that nobody has waited for yet has no command line.
    while (content(`/proc/${pid}/cmdline`) !== '') await setTimeout(20);
});

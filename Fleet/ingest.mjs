import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { DuckDBInstance } from '@duckdb/node-api';
import { parseWords, positive, required } from './arguments.mjs';
import { BadUsage, Failure } from './failure.mjs';
import { kStaging, Lake, namesIn } from './lake.mjs';
import { batchName, kFirstBatch, Loader, syncFile } from './load.mjs';
import { forProgram, readNames, writeNames } from './names.mjs';
import { Progress } from './progress.mjs';
import * as sql from './sql.mjs';

export const kIngestHelp = () => `Reads table images and adds them to a lake, as the state of a day.
Usage: quorlin-fleet ingest --out LAKE [OPTIONS] FOLDER|LIST|-

  FOLDER|LIST|-    A folder with images, at any depth; a list of their names, one a line; or that on standard input

  --out LAKE       The lake's folder; it is made if it isn't there
  --workers N      How many quorlin processes run at a time (default: one for each processor)
  --at TIME        When the images were taken, in UTC unless it says otherwise, such as 2026-11-26 or
                   2026-11-26T06:30:00+01:00 (default: now); its day in UTC is the day in the lake
  --shard K/N      Only the K-th of N parts of the images (default 1/1)
  --replace        Also if the day has this shard; the old rows go when all new ones are there
  --batch N        How many images a quorlin process reads (default 10000)
  --quorlin FILE   The program quorlin (default: the one on the path)

Images that can't be read are rows of rejects. A killed ingest goes on where it was when the same command runs again
(with the same --at). The exit code is 0 with rejects, too.
`;

const kOptions = {
    out: { type: 'string' },
    workers: { type: 'string', default: String(os.cpus().length) },
    at: { type: 'string' },
    shard: { type: 'string', default: '1/1' },
    replace: { type: 'boolean', default: false },
    batch: { type: 'string', default: '10000' },
    quorlin: { type: 'string', default: 'quorlin' },
};
const kMemory = { least: 512, eachWorker: 192 }; // MB, for DuckDB
const kNamesMark = 'quorlin_fleet_names'; // in the metadata of machines: the hash of the names

const say = (line) => process.stderr.write(`${line}\n`);

function parseShard(text) {
    const [, number, count] = /^(\d+)\/(\d+)$/.exec(text)?.map(Number) ?? [];
    if (!(number >= 1 && number <= count && count <= 100_000))
        throw new BadUsage(`--shard: '${text}' is not of the form K/N, with K from 1 to N`);
    return { number, count };
}

// A time as SQL's text of a timestamp in UTC.
function parseTime(text) {
    const form = /^\d{4}-\d\d-\d\d([T ]\d\d:\d\d(:\d\d(\.\d{1,6})?)?(Z|[+-]\d\d:\d\d)?)?$/;
    const day = text.slice(0, 10), clock = text.slice(11) || '00:00';
    const hasZone = /(Z|[+-]\d\d:\d\d)$/.test(clock);
    const time = new Date(`${day}T${clock}${hasZone ? '' : 'Z'}`);
    // Date would take 30 February for a day in March.
    const isDay = form.test(text) && !Number.isNaN(+time) && new Date(`${day}T00:00Z`).toISOString().startsWith(day);
    if (!isDay) throw new BadUsage(`--at: '${text}' is not a time such as 2026-11-26T06:30:00Z`);
    return time.toISOString().replace('T', ' ').replace('Z', '');
}

// One ingest at a time for each shard of a day. flock(1) holds the lock until this process ends, however it ends.
async function lock(file) {
    const holder = spawn('flock', ['--wait', '2', file, 'sh', '-c', 'echo; exec cat'],
        { stdio: ['pipe', 'pipe', 'inherit'] });
    const locked = await Promise.race([
        once(holder.stdout, 'data').then(() => true),
        once(holder, 'exit').then(() => false),
    ]).catch((error) => { throw new Failure(`can't lock the shard: ${error.message}`); });
    if (!locked) throw new Failure('another ingest of this shard and day is running');
    return () => holder.stdin.end();
}

// What an ingest has done so far, in a folder of its own:
//
//     plan.json    what is being ingested; without it, the folder is of no use
//     names        the names of the images, each ended by a zero byte
//     rows/        what quorlin writes, until it is loaded
//     tree/        <dataset>/<batch>.parquet
//     done/        <batch>, with its counts, once the batch's files are synced
//     old/         what --replace takes out of the lake
//     placing      once nothing of the shard is in the lake but what comes from tree/
class Shard {
    constructor(lake, part) {
        this.lake = lake;
        this.part = part;
        this.folder = lake.stagingOf(part);
    }
    path(...names) {
        return path.join(this.folder, ...names);
    }

    plan() {
        try {
            return JSON.parse(fs.readFileSync(this.path('plan.json'), 'utf8'));
        } catch {
            return null;
        }
    }

    // Begins anew unless the folder has the same plan. Returns the counts of finished batches by name.
    begin(plan) {
        const before = this.plan();
        // The time is that of the first run, unless this one names another.
        if (before !== null) plan.at ??= before.at;
        plan.at ??= parseTime(new Date().toISOString());
        const finished = new Map();
        if (JSON.stringify(before) === JSON.stringify(plan)) {
            for (const batch of namesIn(this.path('done')))
                if (!batch.endsWith('.new'))
                    finished.set(batch, JSON.parse(fs.readFileSync(this.path('done', batch), 'utf8')));
        } else {
            for (const name of ['plan.json', 'tree', 'done'])
                fs.rmSync(this.path(name), { recursive: true, force: true });
        }
        fs.rmSync(this.path('rows'), { recursive: true, force: true });
        for (const name of ['tree', 'done', 'rows']) fs.mkdirSync(this.path(name), { recursive: true });
        this.#writeFile('plan.json', JSON.stringify(plan));
        return finished;
    }

    finishBatch(batch, counts) {
        for (const dataset of namesIn(this.path('tree'))) syncFile(this.path('tree', dataset));
        this.#writeFile(path.join('done', batch), JSON.stringify(counts));
    }

    // A file that is there whole or not at all, also after a power failure.
    #writeFile(name, text) {
        fs.writeFileSync(this.path(`${name}.new`), text);
        syncFile(this.path(`${name}.new`));
        fs.renameSync(this.path(`${name}.new`), this.path(name));
        syncFile(path.dirname(this.path(name)));
    }

    // Removes what an unfinished attempt at a batch left.
    clearBatch(batch) {
        for (const dataset of namesIn(this.path('tree')))
            fs.rmSync(this.path('tree', dataset, `${batch}.parquet`), { force: true });
    }

    // Puts the datasets into the lake. Each step can be the last one of a killed ingest: the next one goes on.
    place() {
        if (!fs.existsSync(this.path('placing'))) {
            // machines goes first, so that no query reads a part of the old rows.
            const old = this.lake.datasets().filter((dataset) => fs.existsSync(this.lake.folderOf(dataset, this.part)));
            if (old.length > 0) fs.mkdirSync(this.path('old'), { recursive: true });
            for (const dataset of this.#machinesFirst(old)) {
                fs.rmSync(this.path('old', dataset), { recursive: true, force: true });
                this.#move(this.lake.folderOf(dataset, this.part), this.path('old', dataset));
            }
            this.#writeFile('placing', '');
        }
        for (const dataset of this.#machinesFirst(namesIn(this.path('tree'))).reverse()) {
            fs.mkdirSync(path.dirname(this.lake.folderOf(dataset, this.part)), { recursive: true });
            this.#move(this.path('tree', dataset), this.lake.folderOf(dataset, this.part));
        }
        this.remove();
    }

    #machinesFirst(datasets) {
        return datasets.sort((a, b) => (b === 'machines') - (a === 'machines'));
    }

    #move(from, to) {
        fs.renameSync(from, to);
        syncFile(path.dirname(to));
        syncFile(path.dirname(from));
    }

    // In one step for the next ingest: it takes only the folder's own name for what was begun.
    remove() {
        const gone = `${this.folder}.gone`;
        fs.rmSync(gone, { recursive: true, force: true });
        if (fs.existsSync(this.folder)) fs.renameSync(this.folder, gone);
        fs.rmSync(gone, { recursive: true, force: true });
    }
}

// The running quorlin processes. They end with this one if it is asked to end.
const running = new Set();
function endWith(signal) {
    for (const child of running) child.kill(signal);
    process.kill(process.pid, signal);
}

// Runs quorlin over one batch of names. Images that it can't read are rows of rejects, and no failure.
async function writeRows(quorlin, names, folder) {
    const { lines, others } = forProgram(names);
    const words = ['facts', '--rows', folder, '--image-list', '-'];
    for (const name of others) words.push('--image', name.toString());
    const child = spawn(quorlin, words, { stdio: ['pipe', 'ignore', 'pipe'] });
    running.add(child);
    let said = '';
    child.stderr.on('data', (data) => said = (said + data).slice(-2000));
    child.stdin.on('error', () => {}); // the exit code tells
    child.stdin.end(lines);
    let exitCode, signal;
    try {
        [exitCode, signal] = await once(child, 'close');
    } catch (error) {
        throw new Failure(error.code === 'ENOENT' ? `${quorlin}: no such program; try --quorlin FILE` : error.message);
    } finally {
        running.delete(child);
    }
    if (fs.existsSync(folder) && (exitCode === 0 || exitCode === 1)) return;
    const why = said.trim().split('\n').at(-1) || (signal ? `ended by ${signal}` : `exit code ${exitCode}`);
    throw new Failure(`quorlin: ${why.replace(/^quorlin: /, '')}`);
}

function bytesOf(file, from, to) {
    const bytes = Buffer.alloc(to - from);
    const descriptor = fs.openSync(file, 'r');
    try {
        fs.readSync(descriptor, bytes, 0, bytes.length, from);
    } finally {
        fs.closeSync(descriptor);
    }
    return bytes;
}

// What the lake has of this shard already: the hash of its names, or null.
async function placedNames(lake, part) {
    const file = path.join(lake.folderOf('machines', part), `${kFirstBatch}.parquet`);
    if (!fs.existsSync(file)) return null;
    const instance = await DuckDBInstance.create(':memory:');
    const connection = await instance.connect();
    try {
        const reader = await connection.runAndReadAll(
            `SELECT decode(value) FROM parquet_kv_metadata(${sql.text(file)}) WHERE decode(key) = '${kNamesMark}'`);
        return reader.getRows()[0]?.[0] ?? '';
    } finally {
        connection.closeSync();
        instance.closeSync();
    }
}

// Shards of another number would overlap with this one.
function refuseOtherShards(lake, { day }, count) {
    const staged = namesIn(path.join(lake.folder, kStaging))
        .map((name) => /^day=(.{10}),shard=(\d+-of-\d+)$/.exec(name)).filter((match) => match)
        .map(([, itsDay, shard]) => ({ day: itsDay, shard, where: ', unfinished in .staging' }));
    const other = [...lake.parts('machines'), ...staged]
        .find((part) => part.day === day && Number(part.shard.split('-of-')[1]) !== count);
    if (!other) return;
    throw new Failure(`${day} is kept in another number of shards: there is ${other.shard}${other.where ?? ''}`);
}

async function runBatches(shard, names, plan, finished, options, workers) {
    const todo = [];
    let before = 0;
    const sizeOf = (index) => Math.min(plan.batch, names.count - index * plan.batch);
    for (let index = 0; index + 1 < names.starts.length; index++)
        if (finished.has(batchName(index))) before += sizeOf(index);
        else todo.push(index);
    const progress = new Progress(names.count, before);
    if (todo.length === 0) return progress;

    const temporary = shard.path('rows', 'duckdb');
    const instance = await DuckDBInstance.create(':memory:', {
        threads: String(workers), memory_limit: `${Math.max(kMemory.least, kMemory.eachWorker * workers)}MB`,
        temp_directory: temporary,
        preserve_insertion_order: 'false', autoinstall_known_extensions: 'false',
    });
    const loader = new Loader(shard.path('tree'), plan.at, { [kNamesMark]: names.sha256 });
    let failure = null;
    const work = async () => {
        const connection = await instance.connect();
        for (let index; failure === null && (index = todo.shift()) !== undefined;) {
            const batch = batchName(index);
            // With the process's number, as a quorlin of a killed ingest may still be writing.
            const rows = shard.path('rows', `${batch}.${process.pid}`);
            try {
                shard.clearBatch(batch);
                const [from, to] = names.starts.slice(index, index + 2);
                await writeRows(options.quorlin, bytesOf(shard.path('names'), from, to), rows);
                const counts = await loader.load(connection, rows, batch);
                shard.finishBatch(batch, counts);
                finished.set(batch, counts);
                fs.rmSync(rows, { recursive: true, force: true });
                progress.add(sizeOf(index));
            } catch (error) {
                failure ??= error;
                for (const child of running) child.kill();
            }
        }
        connection.closeSync();
    };
    await Promise.all(Array.from({ length: workers }, work));
    instance.closeSync();
    progress.clear();
    if (failure !== null) throw failure;
    return progress;
}

export async function ingest(words) {
    const options = parseWords(words, kOptions, 'folder, list of images, or - for standard input');
    const lake = new Lake(required(options, 'out'));
    const shardOption = parseShard(options.shard);
    const workers = positive(options, 'workers', 1024);
    const plan = { batch: positive(options, 'batch', 1_000_000), at: options.at && parseTime(options.at) };
    const day = (plan.at ?? new Date().toISOString()).slice(0, 10);
    const part = { day, shard: `${shardOption.number}-of-${shardOption.count}` };
    for (const signal of ['SIGINT', 'SIGTERM']) process.once(signal, endWith);

    const shard = new Shard(lake, part);
    fs.mkdirSync(path.dirname(shard.folder), { recursive: true });
    const unlock = await lock(`${shard.folder}.lock`);
    try {
        // Before all else, as it may be the end of what this command did when it was killed.
        if (fs.existsSync(shard.path('placing'))) shard.place();
        fs.rmSync(`${shard.folder}.gone`, { recursive: true, force: true });
        refuseOtherShards(lake, part, shardOption.count);

        fs.mkdirSync(shard.path(), { recursive: true });
        const all = await writeNames(options.argument, shardOption, shard.path('names.new'), shard.path());
        if (all === 0) throw new Failure(`${options.argument}: no images`);
        fs.renameSync(shard.path('names.new'), shard.path('names'));
        const names = await readNames(shard.path('names'), plan.batch);

        const placed = await placedNames(lake, part);
        if (placed !== null && !options.replace) {
            if (shard.plan() === null) shard.remove();
            if (placed !== names.sha256)
                throw new Failure(`${day} has other images in shard ${part.shard}; --replace takes these instead`);
            say(`${day}, shard ${part.shard} is in the lake already; --replace reads the images again`);
            return;
        }
        plan.names = names.sha256;
        const finished = shard.begin(plan);
        const progress = await runBatches(shard, names, plan, finished, options, workers);
        shard.place();
        const sum = (key) => [...finished.values()].reduce((total, counts) => total + counts[key], 0);
        const tables = sum('machines');
        const perTable = tables === 0 ? '' : `, ${Math.round(sum('bytes') / tables)} bytes a table`;
        say(`${day}, shard ${part.shard}: ${tables} tables, ${sum('rejects')} rejects, ` +
            `${Math.round(progress.rate())} images a second${perTable}`);
    } finally {
        unlock();
    }
}

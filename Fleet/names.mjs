// The names of images: where they come from, and which shard they belong to. Names are bytes, as files have them.
import { spawn } from 'node:child_process';
import { createHash } from 'node:crypto';
import fs from 'node:fs';
import { once } from 'node:events';
import { Failure } from './failure.mjs';

const kLineEnd = 0x0a, kReturn = 0x0d;
const kLongestName = 64 << 10;

// The parts of a stream of bytes that a byte ends. The last one needs no end.
async function* split(stream, end, source) {
    let rest = null;
    for await (const chunk of stream) {
        let from = 0;
        for (let place; (place = chunk.indexOf(end, from)) >= 0; from = place + 1) {
            const part = chunk.subarray(from, place);
            yield rest === null ? part : Buffer.concat([rest, part]);
            rest = null;
        }
        if (from === chunk.length) continue;
        rest = rest === null ? chunk.subarray(from) : Buffer.concat([rest, chunk.subarray(from)]);
        if (rest.length > kLongestName) throw new Failure(`${source}: not a list of file names, one a line`);
    }
    if (rest !== null) yield rest;
}

async function* namesInList(stream, source) {
    for await (let name of split(stream, kLineEnd, source)) {
        if (name.includes(0)) throw new Failure(`${source}: not a list of file names, one a line`);
        if (name[name.length - 1] === kReturn) name = name.subarray(0, -1);
        if (name.length > 0) yield name;
    }
}

// All files below a folder. A folder that can't be read is yielded itself, so that it becomes a reject.
function* namesBelow(folder) {
    let entries;
    try {
        entries = fs.opendirSync(folder, { encoding: 'buffer', bufferSize: 1024 });
    } catch {
        yield folder;
        return;
    }
    try {
        for (let entry; (entry = entries.readSync()) !== null;) {
            const name = Buffer.concat([folder, Buffer.from(folder.at(-1) === 0x2f ? '' : '/'), entry.name]);
            if (entry.isDirectory()) yield* namesBelow(name);
            else if (entry.isFile() || (entry.isSymbolicLink() && isFile(name))) yield name;
        }
    } finally {
        entries.closeSync();
    }
}

// Whether a link leads to a file, or nowhere: that becomes a reject. Links to folders aren't followed.
function isFile(name) {
    return fs.statSync(name, { throwIfNoEntry: false })?.isFile() ?? true;
}

export function imageNames(source) {
    if (source === '-') return namesInList(process.stdin, 'standard input');
    const status = fs.statSync(source, { throwIfNoEntry: false });
    if (!status) throw new Failure(`${source}: no such file or folder`);
    return status.isDirectory() ? namesBelow(Buffer.from(source)) : namesInList(fs.createReadStream(source), source);
}

// The shard of a name, from 1 to `count`. It comes from the same number as `record` in the rows.
function shardOf(name, count) {
    const record = createHash('sha256').update(name).digest().readBigUInt64BE() >> 1n;
    return Number(record % BigInt(count)) + 1;
}

// Writes the names of a shard into a file, sorted, each once and ended by a zero byte. sort(1) keeps the memory flat,
// whatever their number. Returns how many names there were before the choice of the shard.
export async function writeNames(source, shard, file, scratch) {
    const names = imageNames(source);
    const sort = spawn('sort', ['-z', '-u', '-S', '64M', '-T', scratch, '-o', file],
        { stdio: ['pipe', 'ignore', 'pipe'], env: { ...process.env, LC_ALL: 'C' } });
    let problem = '';
    sort.stderr.on('data', (data) => problem += data);
    sort.stdin.on('error', () => {}); // the exit code tells
    const ended = once(sort, 'close');
    ended.catch(() => {});
    let count = 0, block = [], size = 0;
    const write = async () => {
        const isFull = !sort.stdin.write(Buffer.concat(block));
        block = [];
        size = 0;
        if (isFull) await Promise.race([once(sort.stdin, 'drain'), ended]);
    };
    try {
        for await (const name of names) {
            count++;
            if (shard.count > 1 && shardOf(name, shard.count) !== shard.number) continue;
            block.push(name, Buffer.alloc(1));
            size += name.length + 1;
            if (size >= 1 << 16) await write();
        }
        await write();
        sort.stdin.end();
    } catch (error) {
        sort.kill();
        throw error;
    }
    const [exitCode] = await ended;
    if (exitCode !== 0) throw new Failure(`sort: ${problem.trim().split('\n')[0] || 'failed'}`);
    return count;
}

// Where each batch of names begins in that file, the file's end, how many names there are, and their hash.
export async function readNames(file, batchSize) {
    const hash = createHash('sha256');
    const starts = [0];
    let count = 0, place = 0;
    for await (const chunk of fs.createReadStream(file)) {
        hash.update(chunk);
        for (let at = -1; (at = chunk.indexOf(0, at + 1)) >= 0;)
            if (++count % batchSize === 0) starts.push(place + at + 1);
        place += chunk.length;
    }
    if (starts.at(-1) !== place || starts.length === 1) starts.push(place);
    return { starts, count, sha256: hash.digest('hex') };
}

// Runs of names: those that a list can hold, one a line, and the others.
export function forProgram(bytes) {
    const others = [];
    if (!bytes.includes(kLineEnd) && !bytes.includes(kReturn)) {
        const lines = Buffer.from(bytes);
        for (let at = -1; (at = lines.indexOf(0, at + 1)) >= 0;) lines[at] = kLineEnd;
        return { lines, others };
    }
    const lines = [];
    for (let from = 0, at; (at = bytes.indexOf(0, from)) >= 0; from = at + 1) {
        const name = bytes.subarray(from, at);
        if (name.includes(kLineEnd) || name.at(-1) === kReturn) others.push(name);
        else lines.push(name, Buffer.of(kLineEnd));
    }
    return { lines: Buffer.concat(lines), others };
}

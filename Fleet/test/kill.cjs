// Preloaded into an ingest by its tests (NODE_OPTIONS=--require): lists its file operations and the processes that it
// starts in the file KILL_LOG, and kills the whole process group after the step that KILL_AT names.
'use strict';
const fs = require('node:fs');
const childProcess = require('node:child_process');
const { syncBuiltinESMExports } = require('node:module');

// The kind of a step: the same one for each batch, dataset and run.
function kindOf(operation, words) {
    const names = words.filter((word) => typeof word === 'string')
        .map((word) => word.replace(/^.*\.staging\/?/, '~/').replace(/^.*\/lake\//, 'lake/')
            .replace(/day=[\d-]+,shard=\d+-of-\d+/, 'SHARD')
            .replace(/day=[\d-]+/, 'DAY').replace(/shard=\d+-of-\d+/, 'K')
            .replace(/\d{6}(\.\d+)?/, 'BATCH').replace(/(tree|lake|old|BATCH)\/(?!machines)[a-z_]+/, '$1/DATASET'));
    return [operation, ...names].join(' ');
}

const seen = new Map();
const log = process.env.KILL_LOG ? fs.openSync(process.env.KILL_LOG, 'a') : null;
function step(kind) {
    const count = (seen.get(kind) ?? 0) + 1;
    seen.set(kind, count);
    if (log !== null) fs.writeSync(log, `${kind}\n`);
    if (process.env.KILL_AT === `${kind} #${count}`) process.kill(-process.pid, 'SIGKILL');
}

// Writing a file opens it first, so that a kill may leave an empty one. Files are opened for fsync, too.
for (const operation of ['mkdirSync', 'renameSync', 'rmSync', 'writeFileSync', 'openSync']) {
    const original = fs[operation];
    fs[operation] = (...words) => {
        const result = original.apply(fs, words);
        const names = words.slice(0, operation === 'renameSync' ? 2 : 1);
        if (String(names[0]).includes('/lake/')) step(kindOf(operation, names));
        return result;
    };
}
const spawn = childProcess.spawn;
childProcess.spawn = (program, words, options) => {
    const child = spawn(program, words, options);
    step(`spawn ${program.replace(/.*\//, '')}`);
    return child;
};
syncBuiltinESMExports();

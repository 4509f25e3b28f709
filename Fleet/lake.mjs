// Where things are in a lake:
//
//     <dataset>/day=2026-11-26/shard=1-of-4/000001.parquet
//     .staging/day=2026-11-26,shard=1-of-4/    what an ingest has done so far; no query looks there
//
// A shard of a day is there once its folder of `machines` is: that one is put in place last.
import fs from 'node:fs';
import path from 'node:path';
import { Failure } from './failure.mjs';

export const kStaging = '.staging';
const kDayName = /^day=(\d{4}-\d\d-\d\d)$/;
const kShardName = /^shard=(\d+-of-\d+)$/;

// The names in a folder, or none if there is no such folder.
export function namesIn(folder) {
    try {
        return fs.readdirSync(folder);
    } catch (error) {
        if (error.code === 'ENOENT' || error.code === 'ENOTDIR') return [];
        throw error;
    }
}

export class Lake {
    constructor(folder) {
        // DuckDB takes them for patterns.
        if (/[*?[\]]/.test(folder)) throw new Failure(`${folder}: the name of a lake can't have *, ?, [ or ]`);
        this.folder = folder;
    }

    datasets() {
        return namesIn(this.folder).filter((name) => !name.startsWith('.')).sort();
    }

    // The days and shards that a dataset has.
    parts(dataset) {
        const parts = [];
        for (const dayName of namesIn(path.join(this.folder, dataset))) {
            const day = kDayName.exec(dayName)?.[1];
            if (day === undefined) continue;
            for (const shardName of namesIn(path.join(this.folder, dataset, dayName))) {
                const shard = kShardName.exec(shardName)?.[1];
                if (shard !== undefined) parts.push({ day, shard });
            }
        }
        return parts.sort((a, b) => a.day < b.day ? -1 : a.day > b.day ? 1 : a.shard < b.shard ? -1 : 1);
    }

    folderOf(dataset, { day, shard }) {
        return path.join(this.folder, dataset, `day=${day}`, `shard=${shard}`);
    }

    stagingOf({ day, shard }) {
        return path.join(this.folder, kStaging, `day=${day},shard=${shard}`);
    }
}

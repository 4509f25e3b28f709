// One batch of rows, as `quorlin facts --rows` wrote it, becomes Parquet.
import fs from 'node:fs';
import path from 'node:path';
import * as sql from './sql.mjs';

// dataset -> [{ name, type }], in order. Names of datasets and columns have no characters that CSV quotes.
function readColumns(file) {
    const columns = new Map();
    for (const line of fs.readFileSync(file, 'utf8').split(/\r?\n/).slice(1)) {
        if (line === '') continue;
        const [dataset, name, type] = line.split(',');
        if (!columns.has(dataset)) columns.set(dataset, []);
        columns.get(dataset).push({ name, type });
    }
    return columns;
}

export function syncFile(file) {
    const descriptor = fs.openSync(file, 'r');
    try {
        fs.fsyncSync(descriptor);
    } finally {
        fs.closeSync(descriptor);
    }
}

// Whether a file has more than its header line.
function hasRows(file, columns) {
    const header = columns.reduce((size, { name }) => size + name.length + 1, 0);
    return (fs.statSync(file, { throwIfNoEntry: false })?.size ?? 0) > header + 1;
}

export class Loader {
    // tree    the folder that gets a folder for each dataset
    // at      when the images were taken, as SQL's text of a timestamp
    // marks   key -> value, for the metadata of the files of machines
    constructor(tree, at, marks) {
        this.tree = tree;
        this.at = at;
        this.marks = marks;
    }

    // Writes <tree>/<dataset>/<batch>.parquet, synced, for each dataset that has rows. `machines` has a file in any
    // case, and the first batch also writes `columns`. Returns the number of rows of some datasets, and of bytes.
    async load(connection, rows, batch) {
        const columns = readColumns(path.join(rows, 'columns.csv'));
        const counts = { machines: 0, rejects: 0, bytes: 0 };
        for (const [dataset, itsColumns] of columns) {
            const file = path.join(rows, `${dataset}.csv`);
            if (dataset !== 'machines' && !hasRows(file, itsColumns)) continue;
            const written = await this.#write(connection, dataset, batch, file, itsColumns);
            if (Object.hasOwn(counts, dataset)) counts[dataset] = written.rows;
            counts.bytes += written.bytes;
        }
        if (batch === kFirstBatch) {
            const texts = ['dataset', 'column', 'type'].map((name) => ({ name, type: 'VARCHAR' }));
            const written = await this.#write(connection, 'columns', batch, path.join(rows, 'columns.csv'), texts);
            counts.bytes += written.bytes;
        }
        return counts;
    }

    async #write(connection, dataset, batch, file, columns) {
        const folder = path.join(this.tree, dataset);
        const target = path.join(folder, `${batch}.parquet`);
        fs.mkdirSync(folder, { recursive: true });
        const types = columns.map(({ name, type }) => `${sql.text(name)}: ${sql.text(type)}`).join(', ');
        const isMachines = dataset === 'machines';
        const marks = isMachines ? `, KV_METADATA {${Object.entries(this.marks)
            .map(([key, value]) => `${sql.name(key)}: ${sql.text(value)}`).join(', ')}}` : '';
        const result = await connection.run(
            `COPY (SELECT *${isMachines ? `, TIMESTAMP ${sql.text(this.at)} AS "at"` : ''}
                   FROM read_csv(${sql.text(file)}, auto_detect = false, header = true, delim = ',', quote = '"',
                                 escape = '"', nullstr = '', allow_quoted_nulls = false, max_line_size = 16777216,
                                 buffer_size = 33554432, columns = {${types}}))
             TO ${sql.text(target)} (FORMAT parquet, COMPRESSION zstd${marks})`);
        syncFile(target);
        return { rows: result.rowsChanged, bytes: fs.statSync(target).size };
    }
}

export const batchName = (index) => String(index + 1).padStart(6, '0');
export const kFirstBatch = batchName(0);

// Results on standard output, as a table for people, JSON or CSV.

const kWidthRows = 1000; // the rows that columns of a table are measured by; later ones may be wider

// A value of DuckDB as one of JSON's. Large integers and decimals keep their digits, as JSON has no limit for them.
function jsonOf(value) {
    if (value === null || value === undefined) return 'null';
    if (typeof value === 'number') return Number.isFinite(value) ? String(value) : 'null';
    if (typeof value === 'bigint' || typeof value === 'boolean') return String(value);
    if (typeof value === 'string') return quoted(value);
    if (value.scale !== undefined) return value.toString();
    if (Array.isArray(value.items)) return `[${value.items.map(jsonOf).join(',')}]`;
    if (Array.isArray(value.entries) && value.entries[0]?.key !== undefined)
        return `{${value.entries.map(({ key, value: its }) => `${quoted(String(key))}:${jsonOf(its)}`).join(',')}}`;
    if (value.entries !== undefined)
        return `{${Object.entries(value.entries).map(([key, its]) => `${quoted(key)}:${jsonOf(its)}`).join(',')}}`;
    return quoted(value.toString());
}

// Controls, and characters that turn the direction of text, could steer a terminal.
const kSteering = /[\u0000-\u001f\u007f-\u009f\u200e\u200f\u2028-\u202e\u2066-\u2069]/g;
const escape = (character) => `\\u${character.charCodeAt(0).toString(16).padStart(4, '0')}`;
const quoted = (text) => JSON.stringify(text).replace(kSteering, escape);

const textOf = (value) => value === null || value === undefined ? '' : String(value);
const quotedCsv = (text) => /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
// As in quorlin's rows: nothing is NULL, and quotes an empty text.
const csvOf = (value) => value === '' ? '""' : quotedCsv(textOf(value));

class Csv {
    constructor(columns) {
        this.columns = columns;
    }
    begin() {
        return `${this.columns.map(quotedCsv).join(',')}\r\n`;
    }
    rows(rows) {
        return rows.map((row) => `${row.map(csvOf).join(',')}\r\n`).join('');
    }
    end() {
        return '';
    }
}

class Json {
    constructor(columns) {
        this.keys = columns.map(quoted);
        this.count = 0;
    }
    begin() {
        return '[';
    }
    rows(rows) {
        return rows.map((row) => {
            const members = row.map((value, column) => `${this.keys[column]}:${jsonOf(value)}`);
            return `${this.count++ === 0 ? '\n' : ',\n'}{${members.join(',')}}`;
        }).join('');
    }
    end() {
        return '\n]\n';
    }
}

class Table {
    constructor(columns) {
        this.columns = columns;
        this.waiting = [];
        this.widths = null;
        this.count = 0;
    }
    begin() {
        return '';
    }
    rows(rows) {
        this.count += rows.length;
        if (this.widths !== null) return rows.map((row) => this.#line(row)).join('');
        this.waiting.push(...rows);
        return this.waiting.length < kWidthRows ? '' : this.#flush();
    }
    end() {
        return `${this.#flush()}${this.count} ${this.count === 1 ? 'row' : 'rows'}\n`;
    }

    #flush() {
        if (this.widths !== null) return '';
        const cells = this.waiting.map((row) => row.map(this.#cell));
        this.isNumber = this.columns.map((_, column) =>
            this.waiting.some((row) => row[column] !== null) &&
            this.waiting.every((row) => row[column] === null || ['number', 'bigint'].includes(typeof row[column])));
        this.widths = this.columns.map((name, column) =>
            cells.reduce((width, row) => Math.max(width, row[column].length), name.length));
        const rule = this.widths.map((width) => '-'.repeat(width)).join('  ');
        const lines = `${this.#line(this.columns)}${rule}\n${this.waiting.map((row) => this.#line(row)).join('')}`;
        this.waiting = [];
        return lines;
    }
    #cell(value) {
        return textOf(value).replace(kSteering, escape);
    }
    #line(row) {
        const cells = row.map((value, column) => {
            const cell = this.#cell(value);
            return this.isNumber[column] ? cell.padStart(this.widths[column]) : cell.padEnd(this.widths[column]);
        });
        return `${cells.join('  ').trimEnd()}\n`;
    }
}

export const kFormats = { table: Table, json: Json, csv: Csv };

// Writes a result of DuckDB as it comes. Returns early, without a word, if nobody reads any more.
export async function writeResult(result, format, stream = process.stdout) {
    let isClosed = false, wake = () => {};
    stream.on('error', (error) => {
        isClosed = true;
        wake();
        if (error.code !== 'EPIPE') throw error;
    });
    stream.on('drain', () => wake());
    const write = async (text) => {
        if (text === '' || isClosed || stream.write(text)) return;
        await new Promise((resolve) => wake = resolve);
    };
    const writer = new kFormats[format](result.deduplicatedColumnNames());
    await write(writer.begin());
    for (let chunk; !isClosed && (chunk = await result.fetchChunk()) !== null && chunk.rowCount > 0;)
        await write(writer.rows(chunk.getRows()));
    await write(writer.end());
}

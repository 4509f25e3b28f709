// The ready-made queries: queries/NAME.sql. Comment lines at the top of a file are its help; {day}, {from}, {to} and
// {text} are its parameters.
import fs from 'node:fs';
import * as sql from './sql.mjs';

const kParameter = /\{(day|from|to|text)\}/g;
const kFolder = new URL('queries/', import.meta.url);

function read(file) {
    const text = fs.readFileSync(new URL(file, kFolder), 'utf8');
    const help = text.split('\n').filter((line) => line.startsWith('-- '))[0].slice(3);
    const parameters = [...new Set([...text.matchAll(kParameter)].map(([, name]) => name))];
    return { help, parameters, statement: text };
}

export const kNamed = new Map(fs.readdirSync(kFolder).filter((file) => file.endsWith('.sql')).sort()
    .map((file) => [file.slice(0, -4), read(file)]));

// The statement with its parameters as literals: then only files of the days that it names are read.
export function statementOf(statement, values) {
    if (Object.keys(values).length === 0) return statement;
    return statement.replace(kParameter, (_, name) => (name === 'text' ? sql.text : sql.date)(values[name]));
}

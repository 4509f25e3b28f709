import { parseArgs } from 'node:util';
import { BadUsage } from './failure.mjs';

// The options of a command and its one argument that isn't an option. `options` is as parseArgs takes it.
export function parseWords(words, options, what) {
    let parsed;
    try {
        parsed = parseArgs({ args: words, options, allowPositionals: true });
    } catch (error) {
        throw new BadUsage(error.message.split('. ', 1)[0].split('\n', 1)[0]);
    }
    const { values, positionals } = parsed;
    if (positionals.length !== 1) throw new BadUsage(`give one ${what}`);
    return { ...values, argument: positionals[0] };
}

export function required(options, name) {
    if (!options[name]) throw new BadUsage(`--${name} is missing`);
    return options[name];
}

export function positive(options, name, most) {
    const number = Number(options[name]);
    if (!/^\d+$/.test(options[name]) || number < 1 || number > most)
        throw new BadUsage(`--${name}: '${options[name]}' is not a number from 1 to ${most}`);
    return number;
}

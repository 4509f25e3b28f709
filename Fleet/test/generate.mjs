// Writes the images of a fleet of a day into a folder:
//
//     node generate.mjs FOLDER COUNT DAY    with DAY 0 or 1
import fs from 'node:fs';
import path from 'node:path';
import { pathToFileURL } from 'node:url';
import { Fleet } from './fleet.mjs';
import { imageOf } from './table.mjs';

// How many images there are now, and how many bytes they have.
export function generate(folder, fleet, day) {
    let count = 0, bytes = 0, made = '';
    for (const machine of fleet.machines(day)) {
        const file = path.join(folder, machine.name);
        if (path.dirname(file) !== made) fs.mkdirSync(made = path.dirname(file), { recursive: true });
        const image = imageOf(machine);
        fs.writeFileSync(file, image);
        count++;
        bytes += image.length;
    }
    return { count, bytes };
}

if (import.meta.url === pathToFileURL(process.argv[1]).href) {
    const [folder, count, day] = process.argv.slice(2);
    console.log(generate(folder, new Fleet(Number(count)), Number(day)));
}

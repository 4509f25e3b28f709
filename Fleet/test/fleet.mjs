// A fleet whose truth is known: what each machine is on each of two days. Nothing is random, and a machine can be
// computed without the others, so that a million of them take no memory.

const kGiB = 2 ** 30;

// Three firmware levels each, and how many of eight slots have a module.
const kModels = [
    { maker: 'Alder Systems', product: 'A100', sockets: 2, cores: 16, modules: 8, gib: 16, chassis: 0x17 },
    { maker: 'Alder Systems', product: 'A "2", new', sockets: 2, cores: 32, modules: 4, gib: 32, chassis: 0x17 },
    { maker: 'Birch Computing', product: 'Blade 7', sockets: 1, cores: 24, modules: 4, gib: 32, chassis: 0x1c },
    { maker: 'Cedar GmbH & Co', product: 'Tower', sockets: 1, cores: 8, modules: 4, gib: 8, chassis: 0x07 },
    { maker: 'Cedar GmbH & Co', product: 'A100', sockets: 1, cores: 4, modules: 8, gib: 8, chassis: 0x03 },
];
const kModuleMakers = ['Maple', 'Oak Memory', 'Pine'];
export const kPlantedSerial = 'PLANTED-0042';

// A number that looks random, the same for the same arguments.
function mixed(index, salt) {
    let x = Math.imul(index + 1, 0x9e3779b1) ^ Math.imul(salt + 1, 0x85ebca6b);
    x = Math.imul(x ^ x >>> 15, 0x2c1b3c6d);
    x = Math.imul(x ^ x >>> 12, 0x297a2d39);
    return (x ^ x >>> 15) >>> 0;
}

const digits = (number, count) => String(number).padStart(count, '0');
const hex = (number) => number.toString(16).padStart(8, '0');

function uuidOf(index) {
    const text = hex(index) + hex(mixed(index, 1)) + hex(mixed(index, 2)) + hex(mixed(index, 3));
    return text.replace(/^(.{8})(.{4})(.{4})(.{4})/, '$1-$2-$3-$4-');
}

const firmwareOf = (model, level) => ({
    vendor: `${model.maker} firmware`,
    version: `${model.product[0]}${model.sockets}.${level}`,
    date: `202${level}-0${level + 2}-1${level}`,
    level,
});

// The modules of a machine at the start: 8 slots, from the first one on.
function firstModules(index, model) {
    const isNameless = index % 41 === 9;
    const bytes = model.gib * kGiB;
    const modules = [];
    for (let slot = 0; slot < 8; slot++) {
        const maker = kModuleMakers[mixed(index, 4) % 3];
        const serial = `M${digits(index, 8)}${slot}`;
        modules.push(slot >= model.modules ? null : {
            maker,
            serial: isNameless ? null : serial,
            part: `${maker[0]}-${model.gib}G`,
            bytes: index % 61 === 17 && slot === 0 ? bytes * 2 : bytes,
            configuredSpeed: 3200,
        });
    }
    if (index % 401 === 13) modules[1].serial = modules[0].serial;
    if (model.product === 'Tower' && index % 5 === 0) modules[0].configuredSpeed = 4800;
    return modules;
}

const modelOf = (index) => kModels[Math.floor(index / 4) % kModels.length];

// What happens to modules between the days.
function secondModules(index, model) {
    const modules = firstModules(index, model);
    const fresh = () => ({ ...firstModules(index, model)[0], serial: `N${digits(index, 8)}`, configuredSpeed: 3200 });
    const free = modules.indexOf(null);
    switch (index % 41) {
        case 1: // lost
            modules[0] = null;
            break;
        case 2: // added, if there is room
            if (free >= 0) modules[free] = fresh();
            break;
        case 3: // replaced
            modules[1] = fresh();
            break;
        case 4: // moved, or two changed places
            if (free >= 0) [modules[0], modules[free]] = [null, modules[0]];
            else [modules[0], modules[1]] = [modules[1], modules[0]];
            break;
        case 5: // given to the next machine
            modules[2] = null;
            break;
        case 6: // which loses one for it
            modules[3] = firstModules(index - 1, modelOf(index - 1))[2];
            break;
        case 9: // lost, without a serial number
            modules[0] = null;
            break;
        case 10: // taken from a machine that is away
            modules[0] = firstModules(index - 3, modelOf(index - 3))[0];
            break;
    }
    return modules;
}

export class Fleet {
    constructor(count) {
        this.count = count;
        this.planted = Math.floor(count * 0.618);
    }

    // One image for each machine that is there on that day, 0 or 1.
    isThere(index, day) {
        return index % 41 !== (day === 0 ? 8 : 7);
    }
    nameOf(index) {
        return `${digits(Math.floor(index / 1000), 5)}/m${digits(index, 8)}.bin`;
    }

    machine(index, day) {
        const model = modelOf(index);
        const levels = mixed(index, 5) % 10;
        const level = day === 1 && mixed(index, 6) % 10 === 0 ? 2 : levels < 6 ? 1 : levels < 8 ? 0 : 2;
        const isUuidFiller = index % 101 === 7;
        const uuid = isUuidFiller ? null : uuidOf(index % 211 === 3 ? index - 1 : index);
        const systemSerial = index === this.planted ? kPlantedSerial
            : index % 53 === 5 || index % 67 === 9 ? null
            : `S${digits(index % 307 === 11 ? index - 1 : index, 8)}`;
        const boardSerial = index % 89 === 2 ? null : `B${digits(index % 307 === 12 ? index - 1 : index, 8)}`;
        const chassisSerial = model.product === 'Blade 7' ? `C${digits(Math.floor(index / 4), 8)}` : null;
        const processors = index % 73 === 20 ? 1 : model.sockets;
        const modules = day === 0 ? firstModules(index, model) : secondModules(index, model);
        const installed = modules.filter((module) => module);
        return {
            name: this.nameOf(index),
            maker: model.maker,
            product: model.product,
            boardProduct: `${model.product} board`,
            chassisType: model.chassis,
            uuid,
            uuidBytes: uuid ?? 'ffffffff-ffff-ffff-ffff-ffffffffffff',
            systemSerial,
            systemSerialText: systemSerial ?? (index % 53 === 5 ? 'To be filled by O.E.M.' : null),
            boardSerial,
            boardSerialText: boardSerial ?? 'Default string',
            chassisSerial,
            chassisSerialText: chassisSerial,
            firmware: firmwareOf(model, level),
            processor: { name: `Larch ${model.cores}`, cores: model.cores, threads: model.cores * 2 },
            processors,
            cores: processors * model.cores,
            threads: processors * model.cores * 2,
            slots: modules.map((module, slot) =>
                ({ locator: `DIMM ${'ABCDEFGH'[slot]}`, bank: `Bank ${slot >> 2}`, module })),
            memoryModules: installed.length,
            memoryBytes: installed.reduce((sum, module) => sum + module.bytes, 0),
        };
    }

    *machines(day) {
        for (let index = 0; index < this.count; index++) if (this.isThere(index, day)) yield this.machine(index, day);
    }
}

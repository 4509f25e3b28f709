// The answers of the ready-made queries, by plain computation over what the machines of a fleet are.
// `days` is [machines of the first day, machines of the second]; sources are names below a day's folder.

function groups(rows, keyOf) {
    const found = new Map();
    for (const row of rows) {
        const key = JSON.stringify(keyOf(row));
        if (!found.has(key)) found.set(key, []);
        found.get(key).push(row);
    }
    return [...found.values()];
}
const sum = (rows, valueOf) => rows.reduce((total, row) => total + valueOf(row), 0);
const model = (machine) => ({ system_manufacturer: machine.maker, system_product: machine.product });

// machine -> its id, over both days.
export function identities(days) {
    const uses = groups(days.flat().filter(({ uuid }) => uuid !== null), ({ uuid }) => uuid);
    const shared = new Set();
    for (const machines of uses)
        for (const key of ['systemSerial', 'boardSerial', 'chassisSerial']) {
            const serials = new Set(machines.map((machine) => machine[key]).filter((serial) => serial !== null));
            if (serials.size > 1) shared.add(machines[0].uuid);
            if (serials.size > 0) break;
        }
    const escaped = (text) => (text ?? '').replaceAll('%', '%25').replaceAll('/', '%2F');
    return (machine) => {
        if (machine.uuid !== null && !shared.has(machine.uuid)) return `uuid:${machine.uuid}`;
        const { maker, systemSerial, boardSerial, chassisSerial } = machine;
        if ((systemSerial ?? boardSerial ?? chassisSerial) === null) return 'table:';
        return `serial:${[maker, systemSerial, boardSerial, chassisSerial].map(escaped).join('/')}`;
    };
}

export const inventory = (machines, idOf) => machines.map((machine) => ({
    machine_id: idOf(machine), ...model(machine), system_serial_number: machine.systemSerial,
    board_serial_number: machine.boardSerial, chassis_serial_number: machine.chassisSerial, uuid: machine.uuid,
    firmware_version: machine.firmware.version, firmware_date: machine.firmware.date, processors: machine.processors,
    cores: machine.cores, threads: machine.threads, memory_bytes: machine.memoryBytes,
    memory_modules: machine.memoryModules, memory_slots: machine.slots.length, source: machine.name,
}));

export const models = (machines) => groups(machines, model).map((its) => ({
    ...model(its[0]), machines: its.length, cores: sum(its, ({ cores }) => cores),
    memory_bytes: sum(its, ({ memoryBytes }) => memoryBytes), memory_modules: sum(its, (m) => m.memoryModules),
}));

export const firmware = (machines) => groups(machines, (m) => [m.maker, m.product, m.firmware]).map((its) => ({
    ...model(its[0]), firmware_vendor: its[0].firmware.vendor, firmware_version: its[0].firmware.version,
    firmware_date: its[0].firmware.date, machines: its.length,
}));

function modulesOf(machine) {
    return machine.slots.filter(({ module }) => module)
        .map(({ locator, bank, module }) => ({ ...module, machine, slot: `${locator} ${bank}` }));
}

export function duplicates(machines) {
    const candidates = machines.flatMap((machine) => [
        ['UUID', null, machine.uuid],
        ['system serial number', machine.maker, machine.systemSerial],
        ['board serial number', machine.maker, machine.boardSerial],
        ['chassis serial number', machine.maker, machine.chassisSerial],
        ...modulesOf(machine).map(({ maker, serial }) => ['memory module serial number', maker, serial]),
    ].map(([kind, manufacturer, value]) => ({ kind, manufacturer, value, source: machine.name })));
    return groups(candidates.filter(({ value }) => value !== null), (c) => [c.kind, c.manufacturer, c.value])
        .filter((its) => its.length > 1).map((its) => {
            const sources = its.map(({ source }) => source).sort();
            const { source, ...what } = its[0];
            return { ...what, uses: its.length, first_source: sources[0], last_source: sources.at(-1) };
        });
}

export function collisions(days, dates, idOf) {
    const rows = days.flatMap((machines, day) => machines.map((machine) => ({ ...machine, date: dates[day] })))
        .filter((machine) => machine.uuid !== null && !idOf(machine).startsWith('uuid:'));
    const keyOf = (m) => [m.uuid, m.systemSerial, m.boardSerial, m.chassisSerial, m.maker, m.product];
    return groups(rows, keyOf).map((its) => ({
        uuid: its[0].uuid, ...model(its[0]), system_serial_number: its[0].systemSerial,
        board_serial_number: its[0].boardSerial, chassis_serial_number: its[0].chassisSerial, machine_id: idOf(its[0]),
        first_day: its[0].date, last_day: its.at(-1).date, images: its.length,
    }));
}

export function fillers(machines) {
    const fields = [['UUID', 'uuid', 'uuidBytes'], ['system serial number', 'systemSerial', 'systemSerialText'],
        ['board serial number', 'boardSerial', 'boardSerialText'],
        ['chassis serial number', 'chassisSerial', 'chassisSerialText']];
    const rows = fields.flatMap(([field, value, text]) => machines.filter((machine) => machine[value] === null)
        .map((machine) => ({ field, state: machine[text] === null ? 'none' : 'filler', ...model(machine) })));
    return groups(rows, (row) => row).map((its) => ({ ...its[0], machines: its.length }));
}

export function findings(machines) {
    const rows = machines.flatMap((machine) => {
        const modules = modulesOf(machine);
        const repeats = modules.filter(({ maker, serial }, place) => serial !== null &&
            modules.findIndex((other) => other.maker === maker && other.serial === serial) < place);
        return [
            ...(machine.uuid === null ? ['QR0801'] : []),
            ...modules.filter(({ configuredSpeed }) => configuredSpeed > 3200).map(() => 'QR0725'),
            ...repeats.map(() => 'QR0802'),
        ].map((rule) => ({ rule, machine }));
    });
    return groups(rows, ({ rule, machine }) => [rule, machine.maker]).map((its) => ({
        rule: its[0].rule, severity: 'warning', system_manufacturer: its[0].machine.maker,
        machines: new Set(its.map(({ machine }) => machine)).size, findings: its.length,
    }));
}

export function outliers(machines, idOf) {
    const properties = { firmware_version: (m) => m.firmware.version, processors: (m) => m.processors,
        cores: (m) => m.cores, threads: (m) => m.threads, memory_bytes: (m) => m.memoryBytes,
        memory_modules: (m) => m.memoryModules, memory_slots: (m) => m.slots.length };
    return groups(machines, model).filter((its) => its.length >= 3).flatMap((its) =>
        Object.entries(properties).flatMap(([property, valueOf]) => {
            const majority = groups(its, valueOf).find((same) => same.length * 2 > its.length);
            if (majority === undefined) return [];
            const others = its.filter((machine) => valueOf(machine) !== valueOf(majority[0]));
            return others.map((machine) => ({
                machine_id: idOf(machine), ...model(machine), property, value: String(valueOf(machine)),
                majority: String(valueOf(majority[0])), majority_machines: majority.length, model_machines: its.length,
            }));
        }));
}

// Follows each module and each slot from the first day to the second, one by one.
export function modules([first, second], idOf) {
    const uniques = (machines) => groups(machines, idOf).filter((its) => its.length === 1).map(([m]) => [idOf(m), m]);
    const days = [new Map(uniques(first)), new Map(uniques(second))];
    const lists = days.map((machines) => [...machines.entries()].sort(([a], [b]) => a < b ? -1 : 1)
        .flatMap(([id, machine]) => modulesOf(machine).map((module) => ({ ...module, id }))));
    const nameOf = ({ maker, serial, part, bytes }) => [maker, serial ?? `${part} ${bytes}`];
    const placeOf = (module) => JSON.stringify([module.id, module.slot, nameOf(module)]);
    const places = lists.map((list) => new Set(list.map(placeOf)));
    const gone = lists[0].filter((module) => !places[1].has(placeOf(module)));
    const come = lists[1].filter((module) => !places[0].has(placeOf(module)));
    const part = ({ maker, serial, part: number, bytes }, prefix) => ({ [`${prefix}manufacturer`]: maker,
        [`${prefix}serial_number`]: serial, [`${prefix}part_number`]: number, [`${prefix}memory_size`]: bytes });
    const none = (prefix) => ({ [`${prefix}manufacturer`]: null, [`${prefix}serial_number`]: null,
        [`${prefix}part_number`]: null, [`${prefix}memory_size`]: null });
    const rows = [];
    for (const old of [...gone]) {
        const now = come.find((module) => module.serial === old.serial && module.maker === old.maker);
        if (old.serial === null || now === undefined) continue;
        gone.splice(gone.indexOf(old), 1);
        come.splice(come.indexOf(now), 1);
        rows.push({ change: 'moved', machine_id: old.id, slot: old.slot, ...part(old, ''), new_machine_id: now.id,
            new_slot: now.slot, ...none('new_') });
    }
    for (const old of gone) {
        if (!days[1].has(old.id)) continue;
        const now = come.find((module) => module.id === old.id && module.slot === old.slot);
        if (now !== undefined) come.splice(come.indexOf(now), 1);
        const change = now === undefined ? 'lost' : 'replaced';
        rows.push({ change, machine_id: old.id, slot: old.slot, ...part(old, ''), new_machine_id: null, new_slot: null,
            ...(now === undefined ? none('new_') : part(now, 'new_')) });
    }
    for (const now of come)
        if (days[0].has(now.id))
            rows.push({ change: 'added', machine_id: now.id, slot: now.slot, ...none(''), new_machine_id: null,
                new_slot: null, ...part(now, 'new_') });
    return rows;
}

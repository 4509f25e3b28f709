// Writes SMBIOS tables: an entry point of the 64-bit form, and the structures of a machine of fleet.mjs.

const kTableStart = 32;
const kNoHandle = 0xffff;

class Writer {
    constructor() {
        this.bytes = Buffer.alloc(16384);
        this.end = kTableStart;
        this.handle = 0;
    }

    // Begins a structure. Its fields are 0 until they are set; offsets count from its header.
    begin(type, length) {
        this.start = this.end;
        this.end += length;
        this.bytes.fill(0, this.start, this.end);
        this.bytes[this.start] = type;
        this.bytes[this.start + 1] = length;
        this.bytes.writeUInt16LE(this.handle, this.start + 2);
        this.strings = 0;
        return this.handle++;
    }
    byte(offset, ...values) {
        for (const value of values) this.bytes[this.start + offset++] = value;
    }
    word(offset, ...values) {
        for (const value of values) offset = this.bytes.writeUInt16LE(value, this.start + offset) - this.start;
    }
    dword(offset, ...values) {
        for (const value of values) offset = this.bytes.writeUInt32LE(value, this.start + offset) - this.start;
    }
    // A string, unless it is null. Fields come before strings, as these are written after the formatted area.
    string(offset, text) {
        if (text === null) return;
        this.bytes[this.start + offset] = ++this.strings;
        this.end += this.bytes.latin1Write(text, this.end);
        this.bytes[this.end++] = 0;
    }
    finish() {
        if (this.strings === 0) this.bytes[this.end++] = 0;
        this.bytes[this.end++] = 0;
    }

    image() {
        const size = this.end - kTableStart;
        this.bytes.fill(0, 0, kTableStart);
        this.bytes.latin1Write('_SM3_', 0);
        this.byteAt(6, 24, 3, 3, 0, 1);
        this.bytes.writeUInt32LE(size, 12);
        this.bytes.writeBigUInt64LE(BigInt(kTableStart), 16);
        let sum = 0;
        for (let place = 0; place < 24; place++) sum += this.bytes[place];
        this.bytes[5] = -sum & 0xff;
        return this.bytes.subarray(0, this.end);
    }
    byteAt(offset, ...values) {
        for (const value of values) this.bytes[offset++] = value;
    }
}

function writeUuid(writer, uuid) {
    const hex = Buffer.from(uuid.replaceAll('-', ''), 'hex');
    // The first three fields are little-endian.
    const order = [3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15];
    order.forEach((from, to) => writer.byte(8 + to, hex[from]));
}

function writeCache(writer, level, kilobytes) {
    const handle = writer.begin(7, 0x1b);
    writer.word(0x05, 0x0180 | level - 1, 0xffff, 0xffff, 0x20, 0x20);
    writer.byte(0x0f, 0, 5, level === 1 ? 4 : 5, 7);
    writer.dword(0x13, kilobytes, kilobytes);
    writer.string(0x04, `L${level} Cache`);
    writer.finish();
    return handle;
}

function writeProcessor(writer, machine, socket) {
    const caches = [writeCache(writer, 1, 1024), writeCache(writer, 2, 8192), writeCache(writer, 3, 32768)];
    const { cores, threads, name } = machine.processor;
    writer.begin(4, 0x30);
    writer.byte(0x05, 3, 0xb3);
    writer.dword(0x08, 0x000506e3, 0xbfebfbff);
    writer.byte(0x11, 0x8c);
    writer.word(0x12, 100, 4000, 2400);
    writer.byte(0x18, 0x41, 1);
    writer.word(0x1a, ...caches);
    writer.byte(0x23, cores, cores, threads);
    writer.word(0x26, 0xfc, 0xb3, cores, cores, threads);
    writer.string(0x04, `CPU${socket}`);
    writer.string(0x07, 'Larch Semiconductor');
    writer.string(0x10, name);
    writer.finish();
}

function writeModule(writer, array, slot) {
    const module = slot.module;
    writer.begin(17, 0x5c);
    writer.word(0x04, array, 0xfffe);
    writer.byte(0x0e, 9);
    if (module) {
        writer.word(0x08, 72, 64, 0x7fff);
        writer.byte(0x12, 0x1a);
        writer.word(0x13, 0x2080, 3200);
        writer.byte(0x1b, 2);
        writer.dword(0x1c, module.bytes / 2 ** 20);
        writer.word(0x20, module.configuredSpeed, 1200, 1200, 1200);
        writer.byte(0x28, 3, 8);
        writer.dword(0x3c, module.bytes % 2 ** 32, Math.floor(module.bytes / 2 ** 32));
    } else {
        writer.word(0x08, 0xffff, 0xffff);
        writer.byte(0x12, 2);
        writer.word(0x13, 4);
        writer.byte(0x28, 2);
    }
    writer.string(0x10, slot.locator);
    writer.string(0x11, slot.bank);
    if (module) {
        writer.string(0x17, module.maker);
        writer.string(0x18, module.serial);
        writer.string(0x1a, module.part);
    }
    writer.finish();
}

function writeSlot(writer, number) {
    writer.begin(9, 0x13);
    writer.byte(0x05, 0xb6, 0x0d, 3, 4, number, 0, 0x0c, 1);
    writer.word(0x0d, 0);
    writer.byte(0x0f, number, 0, 0x0d);
    writer.string(0x04, `PCIe Slot ${number}`);
    writer.finish();
}

// The image of a machine. The bytes are valid until the next call.
const writer = new Writer();
export function imageOf(machine) {
    writer.end = kTableStart;
    writer.handle = 0;

    writer.begin(0, 0x1a);
    writer.word(0x06, 0xf000);
    writer.byte(0x09, 0xff);
    writer.dword(0x0a, 0x00019880);
    writer.byte(0x12, 0x03, 0x0d, 1, machine.firmware.level, 0xff, 0xff);
    writer.word(0x18, 32);
    writer.string(0x04, machine.firmware.vendor);
    writer.string(0x05, machine.firmware.version);
    const [year, month, day] = machine.firmware.date.split('-');
    writer.string(0x08, `${month}/${day}/${year}`);
    writer.finish();

    writer.begin(1, 0x1b);
    writeUuid(writer, machine.uuidBytes);
    writer.byte(0x18, 6);
    writer.string(0x04, machine.maker);
    writer.string(0x05, machine.product);
    writer.string(0x07, machine.systemSerialText);
    writer.finish();

    writer.begin(2, 0x0f);
    writer.byte(0x09, 9);
    writer.word(0x0b, writer.handle);
    writer.byte(0x0d, 0x0a);
    writer.string(0x04, machine.maker);
    writer.string(0x05, machine.boardProduct);
    writer.string(0x07, machine.boardSerialText);
    writer.finish();

    writer.begin(3, 0x16);
    writer.byte(0x05, machine.chassisType);
    writer.byte(0x09, 3, 3, 3, 3);
    writer.byte(0x11, 1, 2);
    writer.string(0x04, machine.maker);
    writer.string(0x07, machine.chassisSerialText);
    writer.finish();

    for (let socket = 0; socket < machine.processors; socket++) writeProcessor(writer, machine, socket);
    for (let slot = 1; slot <= 4; slot++) writeSlot(writer, slot);

    const array = writer.begin(16, 0x17);
    writer.byte(0x04, 3, 3, 6);
    writer.dword(0x07, 0x80000000);
    writer.word(0x0b, 0xfffe, machine.slots.length);
    writer.dword(0x0f, 0, 0x400);
    writer.finish();
    for (const slot of machine.slots) writeModule(writer, array, slot);

    writer.begin(19, 0x1f);
    writer.dword(0x04, 0, machine.memoryBytes / 1024 - 1);
    writer.word(0x0c, array);
    writer.byte(0x0e, 1);
    writer.finish();
    writer.begin(32, 0x0b);
    writer.finish();
    writer.begin(127, 4);
    writer.finish();
    return writer.image();
}

// Lines on standard error that tell how far an ingest is: on a terminal one that changes, else one every 10 seconds.

const kEvery = { terminal: 200, file: 10_000 };

const count = (number) => number.toLocaleString('en-US');

function span(seconds) {
    if (seconds < 60) return `${Math.ceil(seconds)} s`;
    if (seconds < 3600) return `${Math.ceil(seconds / 60)} min`;
    return `${Math.floor(seconds / 3600)} h ${Math.ceil(seconds % 3600 / 60)} min`;
}

export class Progress {
    // `before` of the images were read by an earlier run, and don't count in the rate.
    constructor(total, before, stream = process.stderr) {
        this.total = total;
        this.done = this.before = before;
        this.stream = stream;
        this.start = this.last = performance.now();
    }

    add(images) {
        this.done += images;
        const now = performance.now();
        if (now - this.last < (this.stream.isTTY ? kEvery.terminal : kEvery.file)) return;
        this.last = now;
        const rate = this.rate();
        const left = span((this.total - this.done) / rate);
        const line = `${count(this.done)} of ${count(this.total)} images, ${count(Math.round(rate))}/s, ${left} left`;
        this.stream.write(this.stream.isTTY ? `\r${line}\x1b[K` : `${line}\n`);
    }

    // Images a second of this run.
    rate() {
        return (this.done - this.before) / Math.max((performance.now() - this.start) / 1000, 0.001);
    }

    // Removes the line from a terminal.
    clear() {
        if (this.stream.isTTY) this.stream.write('\r\x1b[K');
    }
}

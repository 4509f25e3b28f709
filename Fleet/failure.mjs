// Errors that are the user's to mend: one line, and the exit code.

export class Failure extends Error {
    constructor(message, exitCode = 1) {
        super(message);
        this.exitCode = exitCode;
    }
}

export class BadUsage extends Failure {
    constructor(message) {
        super(message, 2);
    }
}

// The first line of any error, without what DuckDB adds for programmers.
export function lineOf(error) {
    const line = String(error.message ?? error).split('\n', 1)[0];
    return error.code === 'ENOSPC' ? `no space left (${line})` : line;
}

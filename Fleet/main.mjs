import { BadUsage, Failure, lineOf } from './failure.mjs';
import { ingest, kIngestHelp } from './ingest.mjs';
import { kQueryHelp, query } from './query.mjs';

const kHelp = `Loads the SMBIOS tables of a fleet into Parquet, and queries them.
Usage: quorlin-fleet ingest --out LAKE [OPTIONS] FOLDER|LIST|-
       quorlin-fleet query --lake LAKE [OPTIONS] NAME|SQL
quorlin-fleet ingest --help and quorlin-fleet query --help tell more.
Exit codes: 0 done, 1 failed, 2 bad usage.
`;
const kCommands = { ingest: [ingest, kIngestHelp], query: [query, kQueryHelp] };

export async function main(words) {
    try {
        const command = kCommands[words[0]];
        if (words.length === 0) throw new BadUsage('give a command, ingest or query');
        if (['--help', '-h', 'help'].includes(words[0])) return void process.stdout.write(kHelp);
        if (!Object.hasOwn(kCommands, words[0])) throw new BadUsage(`no command is called '${words[0]}'`);
        const [run, help] = command;
        if (words.includes('--help') || words.includes('-h')) return void process.stdout.write(help());
        await run(words.slice(1));
    } catch (error) {
        const hint = error instanceof BadUsage ? '; try quorlin-fleet --help' : '';
        process.stderr.write(`quorlin-fleet: ${lineOf(error)}${hint}\n`);
        process.exitCode = error instanceof Failure ? error.exitCode : 1;
    }
}

// What users see: help, formats, errors of one line, and that query changes nothing.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import path from 'node:path';
import { before, test } from 'node:test';
import { DuckDBInstance } from '@duckdb/node-api';
import { Fleet } from './fleet.mjs';
import { generate } from './generate.mjs';
import { ingest, ingestWords, kTool, query, run, scratch } from './tool.mjs';

const folder = scratch('command-line');
const lake = path.join(folder, 'lake'), images = path.join(folder, 'images'), empty = path.join(folder, 'empty');

before(async () => {
    generate(images, new Fleet(40), 0);
    fs.mkdirSync(empty);
    await ingest(lake, '--at', '2026-11-26', images);
});

test('errors are one line, with exit code 1, or 2 for bad usage', async (t) => {
    const select = (words) => ['query', '--lake', lake, ...words];
    const list = path.join(folder, 'image.bin');
    fs.writeFileSync(list, Buffer.of(1, 0, 2));
    const cases = [
        [2, /give a command/, []],
        [2, /no command is called 'constructor'/, ['constructor']],
        [2, /--out is missing/, ['ingest', images]],
        [2, /give one folder/, ['ingest', '--out', lake]],
        [2, /--shard: '3\/2'/, ingestWords(lake, ['--shard', '3/2', images])],
        [2, /--workers: '0'/, ingestWords(lake, ['--workers', '0', images])],
        [2, /--at: '2026-02-30'/, ingestWords(lake, ['--at', '2026-02-30', images])],
        [2, /--at: 'yesterday'/, ingestWords(lake, ['--at', 'yesterday', images])],
        [2, /[Uu]nknown option '--colour'/, ingestWords(lake, ['--colour', images])],
        [1, /no such file or folder/, ingestWords(lake, ['/nonexistent'])],
        [1, /empty: no images/, ingestWords(lake, ['--at', '2026-11-01', empty])],
        [1, /not a list of file names/, ingestWords(lake, ['--at', '2026-11-01', list])],
        [1, /no such program; try --quorlin/, ingestWords(lake, ['--at', '2026-11-01', '--quorlin', '/none', images])],
        [1, /can't have \*/, ingestWords(path.join(folder, 'a*b'), [images])],
        [1, /EEXIST|ENOTDIR|not a folder/, ingestWords(list, [images])],
        [2, /--lake is missing/, ['query', 'models']],
        [1, /no such lake/, ['query', '--lake', '/nonexistent', 'models']],
        [1, /not a folder/, ['query', '--lake', list, 'models']],
        [1, /the lake is empty/, ['query', '--lake', empty, 'models']],
        [2, /no query or dataset is called 'nonsense'.*firmware.*memory_device/, select(['nonsense'])],
        [2, /'xml' is not table, json or csv/, select(['--format', 'xml', 'models'])],
        [2, /--memory: '1'/, select(['--memory', '1', 'models'])],
        [1, /Out of Memory/, select(['--memory', '1MB', 'inventory'])],
        [2, /--text is missing/, select(['find'])],
        [2, /has no --from/, select(['--from', '2026-11-26', 'models'])],
        [1, /nothing of 2026-11-27; it has 2026-11-26/, select(['--day', '2026-11-27', 'models'])],
        [1, /one day only/, select(['modules'])],
        [1, /nonexistent_table/, select(['SELECT * FROM nonexistent_table'])],
        [1, /Parser Error/, select(['SELEC 1'])],
        [2, /one SELECT/, select(['SELECT 1; SELECT 2'])],
        [2, /one SELECT/, select([`COPY (SELECT 1) TO '${folder}/out.csv'`])],
        [2, /one SELECT/, select(['CREATE TABLE a (b INTEGER)'])],
        [2, /one SELECT/, select([`EXPLAIN ANALYZE COPY (SELECT 1) TO '${folder}/out.csv'`])],
    ];
    await Promise.all([0, 1].map(async (half) => {
        for (const [exitCode, expected, words] of cases.filter((_, place) => place % 2 === half)) {
            const result = await run(words);
            assert.match(result.err, expected);
            assert.match(result.err, /^quorlin-fleet: [^\n]*\n$/, words.join(' '));
            assert.equal(result.exitCode, exitCode, words.join(' '));
            assert.equal(result.out, '');
        }
    }));
    assert.ok(!fs.existsSync(path.join(folder, 'out.csv')));
    t.diagnostic(`${cases.length} cases`);
});

test('help names each query', async () => {
    for (const words of [['--help'], ['ingest', '--help'], ['query', '--help']]) {
        const { exitCode, out, err } = await run(words);
        assert.deepEqual([exitCode, err], [0, '']);
        assert.match(out, /Usage: quorlin-fleet/);
        assert.ok(out.split('\n').every((line) => line.length <= 120));
        if (words[0] !== 'query') continue;
        for (const name of ['inventory', 'firmware', 'modules', 'duplicates', 'fillers', 'findings', 'outliers'])
            assert.match(out, new RegExp(`^  ${name} +[A-Z].*\\.$`, 'm'));
    }
});

test('formats', async () => {
    const statement = `SELECT 'a"b,c' AS text, '' AS "none", NULL AS null, 18446744073709551615::UBIGINT AS large,
        1.50::DECIMAL(9, 2) AS price, true AS yes, DATE '2026-11-26' AS day, [1, 2] AS list, {'a': 'x'} AS record,
        chr(27) || '[31m' || chr(8238) AS color`;
    const outputs = {
        json:
            '[\n{"text":"a\\"b,c","none":"","null":null,"large":18446744073709551615,"price":1.50,"yes":true,' +
            '"day":"2026-11-26","list":[1,2],"record":{"a":"x"},"color":"\\u001b[31m\\u202e"}\n]\n',
        csv:
            'text,none,null,large,price,yes,day,list,record,color\r\n' +
            `"a""b,c","",,18446744073709551615,1.50,true,2026-11-26,"[1, 2]",{'a': 'x'},\u001b[31m\u202e\r\n`,
        table:
            'text   none  null                 large  price  yes   day         list    record      color\n' +
            '-----  ----  ----  --------------------  -----  ----  ----------  ------  ----------  ----------------\n' +
            'a"b,c              18446744073709551615  1.50   true  2026-11-26  [1, 2]  ' +
            "{'a': 'x'}  \\u001b[31m\\u202e\n1 row\n",
    };
    for (const [format, expected] of Object.entries(outputs)) {
        const { out, err } = await run(['query', '--lake', lake, '--format', format, statement]);
        assert.deepEqual([out, err], [expected, '']);
    }
    assert.deepEqual(await query(lake, 'SELECT * FROM tpm_device'), [], 'a dataset without rows has its columns');
    const rows = await query(lake, 'SELECT i FROM range(5000) t(i) ORDER BY i');
    assert.deepEqual(rows.map(({ i }) => i), Array.from({ length: 5000 }, (_, i) => i));
});

test('a reader that stops early ends query quietly', async () => {
    const words = ['query', '--lake', lake, '--format', 'csv', 'SELECT * FROM range(3000000)'];
    const child = spawn(kTool, words, { stdio: ['ignore', 'pipe', 'pipe'] });
    let err = '';
    child.stderr.on('data', (data) => err += data);
    await once(child.stdout, 'data');
    child.stdout.destroy();
    const [exitCode] = await once(child, 'close');
    assert.deepEqual([exitCode, err], [0, '']);
});

test('query writes nothing into a lake', async () => {
    const state = () => fs.readdirSync(lake, { recursive: true }).sort()
        .map((name) => { const { mtimeMs, size } = fs.statSync(path.join(lake, name)); return [name, mtimeMs, size]; });
    const before = state();
    await query(lake, 'inventory');
    await query(lake, 'SHOW TABLES');
    await run(['query', '--lake', lake, `COPY machines TO '${lake}/machines/x.parquet'`]);
    assert.deepEqual(state(), before);
});

test('days whose columns differ', async () => {
    // As an older quorlin would have written it: without a column, and with one that is no more.
    const older = path.join(lake, 'machines/day=2026-11-20/shard=1-of-1');
    fs.mkdirSync(older, { recursive: true });
    const connection = await (await DuckDBInstance.create(':memory:')).connect();
    await connection.run(`COPY (SELECT * EXCLUDE (memory_slots, day, shard), 'x' AS old_column
        FROM read_parquet('${lake}/machines/day=2026-11-26/*/*.parquet')) TO '${older}/000001.parquet'`);
    const rows = await query(lake, `SELECT count(*) AS machines, count(memory_slots) AS slots, count(old_column) AS old
                                    FROM machines GROUP BY day ORDER BY day`);
    const { machines } = rows[0];
    assert.deepEqual(rows, [{ machines, slots: 0, old: machines }, { machines, slots: machines, old: 0 }]);
    const inventory = await query(lake, '--day', '2026-11-20', 'inventory');
    assert.ok(inventory.length === machines && inventory.every((row) => row.memory_slots === null));
    assert.deepEqual(await query(lake, '--day', '2026-11-20', 'findings'), []);
    fs.rmSync(path.dirname(older), { recursive: true });
});

// The lake as views of DuckDB, made when a statement names them. The files views/NAME.sql and the ready-made queries
// are in SQL that Spark, Trino and ClickHouse take, too.
import fs from 'node:fs';
import * as sql from './sql.mjs';

const read = (name) => fs.readFileSync(new URL(`views/${name}.sql`, import.meta.url), 'utf8');
const kDerived = { identities: read('identities') };

// The words of a statement that may be names.
const wordsOf = (statement) => new Set(statement.toLowerCase().match(/\w+/g));

export class Views {
    constructor(connection, lake) {
        this.connection = connection;
        this.lake = lake;
        this.parts = lake.parts('machines');
        this.made = new Set();
        this.empties = new Map(); // dataset -> its columns as SQL
    }

    days() {
        return [...new Set(this.parts.map(({ day }) => day))];
    }

    async readNames() {
        const rows = await this.connection.runAndReadAll(
            `SELECT dataset, string_agg('NULL::' || type || ' AS "' || "column" || '"', ', ')
             FROM (${this.#select('columns', this.parts.slice(-1))}) GROUP BY dataset`);
        for (const [dataset, columns] of rows.getRows()) this.empties.set(dataset, columns);
    }

    names() {
        return [...new Set([...this.empties.keys(), ...this.lake.datasets(), ...Object.keys(kDerived)])].sort();
    }

    // Makes the views that a statement may name. `all` makes all, for statements that list them.
    async make(statement) {
        const words = wordsOf(statement);
        const all = words.has('show') || words.has('information_schema') || words.has('duckdb_views');
        for (const name of this.names()) if (all || words.has(name)) await this.#makeOne(name);
    }

    async #makeOne(name) {
        if (this.made.has(name)) return;
        this.made.add(name);
        if (Object.hasOwn(kDerived, name)) {
            await this.make(kDerived[name]);
            await this.connection.run(`CREATE VIEW ${sql.name(name)} AS ${kDerived[name]}`);
            return;
        }
        // Only what is whole: the shard's machines are put in place last.
        const has = new Set(this.lake.parts(name).map(({ day, shard }) => `${day} ${shard}`));
        const parts = this.parts.filter(({ day, shard }) => has.has(`${day} ${shard}`));
        const select = parts.length > 0 ? this.#select(name, parts)
            : `SELECT ${this.empties.get(name)}, NULL::DATE AS day, NULL::VARCHAR AS shard WHERE false`;
        await this.connection.run(`CREATE VIEW ${sql.name(name)} AS ${select}`);
    }

    #select(name, parts) {
        const files = parts.map((part) => sql.text(`${this.lake.folderOf(name, part)}/*.parquet`)).join(', ');
        return `SELECT * FROM read_parquet([${files}], union_by_name = true, hive_partitioning = true,
                                           hive_types = {'day': DATE, 'shard': VARCHAR})`;
    }
}

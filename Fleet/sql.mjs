// All texts that become part of SQL are quoted here. The standard's way: DuckDB, Spark (in ANSI mode), Trino and
// ClickHouse take it, but ClickHouse also reads backslashes.

export const text = (value) => `'${value.replaceAll("'", "''")}'`;
export const name = (value) => `"${value.replaceAll('"', '""')}"`;
export const date = (day) => `DATE ${text(day)}`;

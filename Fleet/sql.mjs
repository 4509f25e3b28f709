// All texts that become part of SQL are quoted here, as standard SQL quotes them.

export const text = (value) => `'${value.replaceAll("'", "''")}'`;
export const name = (value) => `"${value.replaceAll('"', '""')}"`;
export const date = (day) => `DATE ${text(day)}`;

export const kQueryHelp = () => 'TODO\n';
export async function query() {}

// Permanent links: #v=NAME of a variable, with &p=2 where a later command of the report shows it again and &n=2 where the
// same command does; #f=1.1 of another table, by command and place.

/** Gives every entry its `link` and returns what finds an entry by the address of a link. */
export function linkEntries(entries) {
  const byLink = new Map();
  const firsts = new Map(); // name -> procedure that showed it first
  const seen = new Map();
  for (const entry of entries) {
    if (entry.isItem) {
      if (!firsts.has(entry.name)) firsts.set(entry.name, entry.procedure);
      const key = `${entry.procedure} ${entry.name}`;
      const times = (seen.get(key) ?? 0) + 1;
      seen.set(key, times);
      entry.link = `#v=${encodeURIComponent(entry.name)}`;
      if (entry.procedure !== firsts.get(entry.name)) entry.link += `&p=${entry.procedure + 1}`;
      if (times > 1) entry.link += `&n=${times}`;
    } else {
      entry.link = `#f=${entry.procedure + 1}.${entry.place + 1}`;
    }
    if (!byLink.has(entry.link)) byLink.set(entry.link, entry);
  }
  return (hash) => byLink.get(hash) ?? byLink.get(rewritten(hash)) ?? null;
}

/** A link as other programs pass it on: with letters escaped that need not be, or the other way round. */
function rewritten(hash) {
  const [first, ...rest] = hash.split('&');
  if (!first.startsWith('#v=')) return hash;
  try {
    return [`#v=${encodeURIComponent(decodeURIComponent(first.slice(3)))}`, ...rest].join('&');
  } catch {
    return hash;
  }
}

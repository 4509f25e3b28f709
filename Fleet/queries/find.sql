-- Where a text occurs, whole, among the strings of a day: --text TEXT.
SELECT i.machine_id, m.source, s.type, s.handle, s.number, s.string
FROM strings s
JOIN machines m ON m.record = s.record
JOIN identities i ON i.record = s.record
WHERE s.day = {day} AND m.day = {day} AND i.day = {day} AND s.string = {text}
ORDER BY m.source, s.handle, s.number

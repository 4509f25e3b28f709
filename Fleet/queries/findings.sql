-- What check finds wrong in the tables of a day, by rule and maker.
SELECT f.rule, f.severity, m.system_manufacturer, count(DISTINCT f.record) AS machines, count(*) AS findings,
       min(f.message) AS example
FROM findings f JOIN machines m ON m.day = f.day AND m.record = f.record
WHERE f.day = {day} AND m.day = {day}
GROUP BY f.rule, f.severity, m.system_manufacturer
ORDER BY f.rule, m.system_manufacturer

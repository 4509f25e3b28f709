-- Machines that differ from the majority of their model, if it has three or more, on a day.
WITH properties AS (
    SELECT record, system_manufacturer, system_product, 'firmware_version' AS property, firmware_version AS value
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT record, system_manufacturer, system_product, 'processors', CAST(processors AS VARCHAR)
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT record, system_manufacturer, system_product, 'cores', CAST(cores AS VARCHAR)
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT record, system_manufacturer, system_product, 'threads', CAST(threads AS VARCHAR)
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT record, system_manufacturer, system_product, 'memory_bytes', CAST(memory_bytes AS VARCHAR)
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT record, system_manufacturer, system_product, 'memory_modules', CAST(memory_modules AS VARCHAR)
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT record, system_manufacturer, system_product, 'memory_slots', CAST(memory_slots AS VARCHAR)
    FROM machines WHERE day = {day}
),
levels AS (
    SELECT system_manufacturer, system_product, property, value, count(*) AS machines
    FROM properties
    GROUP BY system_manufacturer, system_product, property, value
),
totals AS (
    SELECT system_manufacturer, system_product, property, sum(machines) AS total
    FROM levels
    GROUP BY system_manufacturer, system_product, property
    HAVING sum(machines) >= 3
),
majorities AS (
    SELECT l.system_manufacturer, l.system_product, l.property, l.value, l.machines, t.total AS total
    FROM levels l JOIN totals t
      ON t.system_manufacturer = l.system_manufacturer AND t.system_product = l.system_product
     AND t.property = l.property
    WHERE l.value IS NOT NULL AND l.machines * 2 > t.total
)
SELECT i.machine_id, p.system_manufacturer, p.system_product, p.property, p.value, a.value AS majority,
       a.machines AS majority_machines, a.total AS model_machines
FROM properties p
JOIN majorities a
  ON a.system_manufacturer = p.system_manufacturer AND a.system_product = p.system_product AND a.property = p.property
JOIN identities i ON i.record = p.record
WHERE i.day = {day} AND (p.value IS NULL OR p.value <> a.value)
ORDER BY p.system_manufacturer, p.system_product, i.machine_id, p.property, p.value

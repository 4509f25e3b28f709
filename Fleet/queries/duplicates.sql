-- UUIDs and serial numbers that more than one machine or memory module has on a day.
WITH candidates AS (
    SELECT 'UUID' AS kind, NULL AS manufacturer, uuid AS value, source
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT 'system serial number', system_manufacturer, system_serial_number, source
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT 'board serial number', board_manufacturer, board_serial_number, source
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT 'chassis serial number', chassis_manufacturer, chassis_serial_number, source
    FROM machines WHERE day = {day}
),
modules AS (
    SELECT manufacturer, serial_number, count(*) AS uses, min(record) AS first_record, max(record) AS last_record
    FROM memory_device
    WHERE day = {day} AND serial_number IS NOT NULL
    GROUP BY manufacturer, serial_number
    HAVING count(*) > 1
),
duplicates AS (
    SELECT kind, manufacturer, value, count(*) AS uses, min(source) AS first_source, max(source) AS last_source
    FROM candidates
    WHERE value IS NOT NULL
    GROUP BY kind, manufacturer, value
    HAVING count(*) > 1
    UNION ALL
    SELECT 'memory module serial number', d.manufacturer, d.serial_number, d.uses,
           CASE WHEN a.source < b.source THEN a.source ELSE b.source END,
           CASE WHEN a.source < b.source THEN b.source ELSE a.source END
    FROM modules d JOIN machines a ON a.record = d.first_record JOIN machines b ON b.record = d.last_record
    WHERE a.day = {day} AND b.day = {day}
)
SELECT *
FROM duplicates
ORDER BY kind, manufacturer, value

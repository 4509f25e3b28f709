-- Memory modules that were lost, added, moved or replaced between two days.
--
-- A module is its maker and serial number; without a serial number, it is known by its slot, part number and size only.
-- Machines that are away on one of the days lose and gain nothing, but modules may move from and to them. Machines
-- whose identity isn't unique on a day are left out.
-- Only machines whose tables differ are looked at, as most don't change from day to day.
WITH unique_machines AS (
    SELECT i.day AS day, i.machine_id AS machine_id, min(i.record) AS record, min(m.table_sha256) AS table_sha256
    FROM identities i JOIN machines m ON m.day = i.day AND m.record = i.record
    WHERE i.day IN ({from}, {to}) AND m.day IN ({from}, {to})
    GROUP BY i.day, i.machine_id
    HAVING count(*) = 1
),
changed AS (
    SELECT coalesce(o.machine_id, n.machine_id) AS machine_id, o.record AS old_record, n.record AS new_record
    FROM (SELECT * FROM unique_machines WHERE day = {from}) o
    FULL JOIN (SELECT * FROM unique_machines WHERE day = {to}) n ON n.machine_id = o.machine_id
    WHERE o.record IS NULL OR n.record IS NULL OR o.table_sha256 <> n.table_sha256
),
modules AS (
    SELECT day, record, coalesce(device_locator, '') || ' ' || coalesce(bank_locator, '') AS slot,
           coalesce(manufacturer, '') AS manufacturer, serial_number, part_number, memory_size,
           coalesce(serial_number, coalesce(part_number, '') || ' ' || CAST(memory_size AS VARCHAR)) AS module
    FROM memory_device
    WHERE day IN ({from}, {to}) AND memory_size > 0
),
old_modules AS (
    SELECT c.machine_id AS machine_id, c.new_record AS other_record, m.record AS record, m.slot AS slot,
           m.manufacturer AS manufacturer, m.serial_number AS serial_number, m.part_number AS part_number,
           m.memory_size AS memory_size, m.module AS module
    FROM modules m JOIN changed c ON c.old_record = m.record
    WHERE m.day = {from}
),
new_modules AS (
    SELECT c.machine_id AS machine_id, c.old_record AS other_record, m.record AS record, m.slot AS slot,
           m.manufacturer AS manufacturer, m.serial_number AS serial_number, m.part_number AS part_number,
           m.memory_size AS memory_size, m.module AS module
    FROM modules m JOIN changed c ON c.new_record = m.record
    WHERE m.day = {to}
),
gone AS (
    SELECT o.*, row_number() OVER (PARTITION BY o.manufacturer, o.serial_number ORDER BY o.machine_id, o.slot) AS place
    FROM old_modules o
    LEFT JOIN new_modules n ON n.record = o.other_record AND n.slot = o.slot
                           AND n.manufacturer = o.manufacturer AND n.module = o.module
    WHERE n.record IS NULL
),
come AS (
    SELECT n.*, row_number() OVER (PARTITION BY n.manufacturer, n.serial_number ORDER BY n.machine_id, n.slot) AS place
    FROM new_modules n
    LEFT JOIN old_modules o ON o.record = n.other_record AND o.slot = n.slot
                           AND o.manufacturer = n.manufacturer AND o.module = n.module
    WHERE o.record IS NULL
),
moved AS (
    SELECT g.machine_id AS from_machine, g.slot AS from_slot, c.machine_id AS to_machine, c.slot AS to_slot,
           g.manufacturer, g.serial_number, g.part_number, g.memory_size, g.place
    FROM gone g
    JOIN come c ON c.manufacturer = g.manufacturer AND c.serial_number = g.serial_number AND c.place = g.place
),
gone_for_good AS (
    SELECT g.*, row_number() OVER (PARTITION BY g.machine_id, g.slot ORDER BY g.manufacturer, g.module) AS turn
    FROM gone g
    LEFT JOIN moved m ON m.manufacturer = g.manufacturer AND m.serial_number = g.serial_number AND m.place = g.place
    WHERE m.place IS NULL AND g.other_record IS NOT NULL
),
new_ones AS (
    SELECT c.*, row_number() OVER (PARTITION BY c.machine_id, c.slot ORDER BY c.manufacturer, c.module) AS turn
    FROM come c
    LEFT JOIN moved m ON m.manufacturer = c.manufacturer AND m.serial_number = c.serial_number AND m.place = c.place
    WHERE m.place IS NULL AND c.other_record IS NOT NULL
),
changes AS (
    SELECT 'moved' AS change, from_machine AS machine_id, from_slot AS slot, manufacturer, serial_number, part_number,
           memory_size, to_machine AS new_machine_id, to_slot AS new_slot, NULL AS new_manufacturer,
           NULL AS new_serial_number, NULL AS new_part_number, NULL AS new_memory_size
    FROM moved
    UNION ALL
    SELECT CASE WHEN n.machine_id IS NULL THEN 'lost' WHEN g.machine_id IS NULL THEN 'added' ELSE 'replaced' END,
           coalesce(g.machine_id, n.machine_id), coalesce(g.slot, n.slot), g.manufacturer, g.serial_number,
           g.part_number, g.memory_size, NULL, NULL, n.manufacturer, n.serial_number, n.part_number, n.memory_size
    FROM gone_for_good g FULL JOIN new_ones n ON n.machine_id = g.machine_id AND n.slot = g.slot AND n.turn = g.turn
)
SELECT *
FROM changes
ORDER BY change, machine_id, slot, serial_number, new_serial_number

-- Identities that nobody set (fillers and missing ones), by model, on a day.
WITH candidates AS (
    SELECT 'UUID' AS field, uuid_state AS state, system_manufacturer, system_product
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT 'system serial number', system_serial_number_state, system_manufacturer, system_product
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT 'board serial number', board_serial_number_state, system_manufacturer, system_product
    FROM machines WHERE day = {day}
    UNION ALL
    SELECT 'chassis serial number', chassis_serial_number_state, system_manufacturer, system_product
    FROM machines WHERE day = {day}
)
SELECT field, state, system_manufacturer, system_product, count(*) AS machines
FROM candidates
WHERE state IS NULL OR state <> 'value'
GROUP BY field, state, system_manufacturer, system_product
ORDER BY field, state, system_manufacturer, system_product

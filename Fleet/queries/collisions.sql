-- UUIDs that identify no machine, as images with different serial numbers have them, on any day.
SELECT m.uuid, m.system_manufacturer, m.system_product, m.system_serial_number, m.board_serial_number,
       m.chassis_serial_number, i.machine_id, min(m.day) AS first_day, max(m.day) AS last_day, count(*) AS images
FROM machines m JOIN identities i ON i.day = m.day AND i.record = m.record
WHERE m.uuid IS NOT NULL AND i.identified_by <> 'uuid'
GROUP BY m.uuid, m.system_manufacturer, m.system_product, m.system_serial_number, m.board_serial_number,
         m.chassis_serial_number, i.machine_id
ORDER BY m.uuid, m.system_serial_number, m.board_serial_number, m.chassis_serial_number, i.machine_id

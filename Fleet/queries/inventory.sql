-- The machines of a day, with their serial numbers, firmware and totals.
SELECT i.machine_id, m.system_manufacturer, m.system_product, m.system_serial_number, m.board_serial_number,
       m.chassis_serial_number, m.uuid, m.firmware_version, m.firmware_date, m.processors, m.cores, m.threads,
       m.memory_bytes, m.memory_modules, m.memory_slots, m.source
FROM machines m JOIN identities i ON i.day = m.day AND i.record = m.record
WHERE m.day = {day} AND i.day = {day}
ORDER BY m.system_manufacturer, m.system_product, i.machine_id, m.source

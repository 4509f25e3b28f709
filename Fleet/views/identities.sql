-- Which machine an image is of: its UUID, unless images with different serial numbers have that; else its serial
-- numbers; else the hash of its table.
SELECT m.day, m.record,
       CASE WHEN m.uuid IS NOT NULL AND s.uuid IS NULL THEN 'uuid:' || m.uuid
            WHEN coalesce(m.system_serial_number, m.board_serial_number, m.chassis_serial_number) IS NOT NULL
            -- Escaped, so that different serial numbers stay different.
            THEN 'serial:'
                 || replace(replace(coalesce(m.system_manufacturer, m.board_manufacturer, ''), '%', '%25'), '/', '%2F')
                 || '/' || replace(replace(coalesce(m.system_serial_number, ''), '%', '%25'), '/', '%2F')
                 || '/' || replace(replace(coalesce(m.board_serial_number, ''), '%', '%25'), '/', '%2F')
                 || '/' || replace(replace(coalesce(m.chassis_serial_number, ''), '%', '%25'), '/', '%2F')
            ELSE 'table:' || m.table_sha256 END AS machine_id,
       CASE WHEN m.uuid IS NOT NULL AND s.uuid IS NULL THEN 'uuid'
            WHEN coalesce(m.system_serial_number, m.board_serial_number, m.chassis_serial_number) IS NOT NULL
            THEN 'serial'
            ELSE 'table' END AS identified_by
FROM machines m
LEFT JOIN (
    -- The best kind of serial number that the images of a UUID have decides.
    SELECT uuid
    FROM machines
    WHERE uuid IS NOT NULL
    GROUP BY uuid
    HAVING min(system_serial_number) <> max(system_serial_number)
        OR (count(system_serial_number) = 0 AND min(board_serial_number) <> max(board_serial_number))
        OR (count(system_serial_number) = 0 AND count(board_serial_number) = 0
            AND min(chassis_serial_number) <> max(chassis_serial_number))
) s ON s.uuid = m.uuid

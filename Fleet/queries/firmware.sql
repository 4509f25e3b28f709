-- The firmware levels of each model on a day, newest first, with how many machines have them.
SELECT system_manufacturer, system_product, firmware_vendor, firmware_version, firmware_date, count(*) AS machines
FROM machines
WHERE day = {day}
GROUP BY system_manufacturer, system_product, firmware_vendor, firmware_version, firmware_date
ORDER BY system_manufacturer, system_product, firmware_date DESC, firmware_vendor, firmware_version

-- How many machines of each model there are on a day, with totals.
SELECT system_manufacturer, system_product, count(*) AS machines, sum(cores) AS cores,
       sum(memory_bytes) AS memory_bytes, sum(memory_modules) AS memory_modules
FROM machines
WHERE day = {day}
GROUP BY system_manufacturer, system_product
ORDER BY system_manufacturer, system_product

-- The days of the lake, with their shards and how many images were read.
SELECT day, count(DISTINCT shard) AS shards, count(*) AS machines, min("at") AS first_at, max("at") AS last_at
FROM machines
GROUP BY day
ORDER BY day

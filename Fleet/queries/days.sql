-- The days of the lake, with their shards and how many images were read.
SELECT day, count(DISTINCT shard) AS shards, count(*) AS machines, min(m.at) AS first_at, max(m.at) AS last_at
FROM machines m
GROUP BY day
ORDER BY day

# The ratios of a run, one a line: function and workload, peer, ratio. Of the codecs the rows of
# 4 KiB; without the rows that compare a function with itself.
[.[].benchmarks[] | select(.aggregate_name == "median")
  | (.run_name | sub("/real_time$"; "") | split(" : ")) as [$row, $peer]
  | select($peer | startswith("itself") | not)
  | select($row | test(", (24|1048576|16777216) bytes$") | not)
  | [($row | sub(", 4096 bytes$"; ", 4 KiB")), $peer, .ratio]]
| sort[]
| @tsv

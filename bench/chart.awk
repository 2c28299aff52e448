# Draws the table of scripts/bench.sh as SVG, one bar a function: the first workload of the function,
# beside the fastest of the other libraries. Narrow, so that the labels can be read on a phone.
# usage: awk -v machine=TEXT -f chart.awk TABLE
BEGIN {
  FS = " *[|] *"
  width = 480; left = 16; one = 250; limit = 1.5; row = 40; top = 118  # pixels; limit is a ratio
}
NR <= 2 { next }
{
  name = $2; ratio = $5 + 0
  split(name, words, ", ")
  if (!(words[1] in workload)) { workload[words[1]] = name; names[++count] = words[1] }
  if (workload[words[1]] != name) next
  if (ratio > worst[words[1]]) { worst[words[1]] = ratio; peer[words[1]] = $4 }
}
function text(x, y, class, words, more) {
  printf "<text x='%d' y='%d' class='%s'%s>%s</text>\n", x, y, class, more, words
}
function legend(x, class, words) {
  printf "<rect x='%d' y='72' width='12' height='12' class='%s'/>\n", x, class
  text(x + 17, 83, "note", words)
}
END {
  for (i = 2; i <= count; i++)  # insertion sort: fastest first
    for (j = i; j > 1 && worst[names[j - 1]] > worst[names[j]]; j--) {
      swap = names[j]; names[j] = names[j - 1]; names[j - 1] = swap
    }
  height = top + count * row + 12
  printf "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 %d %d' width='%d' height='%d' " \
    "font-family='sans-serif' font-size='14'>\n", width, height, width, height
  print "<title>Time of each function beside the fastest other library</title>"
  print "<style>.page{fill:#fff}.label,.title{fill:#1f2328}.note{fill:#59636e;font-size:12px}"
  print ".title{font-size:16px;font-weight:bold}.line{stroke:#1f2328}"
  print ".faster{fill:#1a7f37}.equal{fill:#6e7781}.slower{fill:#bc4c00}"
  print "@media(prefers-color-scheme:dark){.page{fill:#0d1117}.label,.title{fill:#f0f6fc}"
  print ".note{fill:#9198a1}.line{stroke:#f0f6fc}"
  print ".faster{fill:#3fb950}.equal{fill:#8b949e}.slower{fill:#f0883e}}</style>"
  printf "<rect class='page' width='%d' height='%d'/>\n", width, height
  text(left, 28, "title", "Time beside the fastest other library")
  text(left, 48, "note", "1 is the time of the other library; shorter is faster. ")
  text(left, 64, "note", machine)
  legend(left, "faster", "faster")
  legend(left + 85, "equal", "within 5 %")
  legend(left + 190, "slower", "slower")
  text(left + 270, 83, "note", "//  cut at " limit)
  text(left + one, top - 12, "note", "1", " text-anchor='middle'")
  for (i = 1; i <= count; i++) {
    ratio = worst[names[i]]; y = top + (i - 1) * row
    class = ratio < 0.95 ? "faster" : ratio <= 1.05 ? "equal" : "slower"
    length_ = one * (ratio > limit ? limit : ratio)
    text(left, y + 12, "label", workload[names[i]] " - " peer[names[i]])
    printf "<rect x='%d' y='%d' width='%.0f' height='13' class='%s'/>\n", left, y + 18, length_, class
    printf "<path class='line' d='M%d %dv17'/>\n", left + one, y + 16
    if (ratio > limit)
      printf "<path d='M%.0f %d l6 -19 h5 l-6 19z' class='page'/>\n", left + length_ - 26, y + 34
    end = length_ < one && length_ > one - 40 ? one : length_  # not across the line at 1
    text(left + end + 6, y + 29, "label", sprintf("%.2f", ratio))
  }
  print "</svg>"
}

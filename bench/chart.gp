# Draws what chart.jq has written: a bar for each function and peer, beside the peer at 1. The
# background is part of the picture, so that it is the same on light and dark pages.
set datafile separator "\t"
stats data using 3 nooutput
rows = STATS_records
bar = 19.0  # in pixels, as what stands above and below the bars
above = 80
below = 30
height = above + rows * bar + below
set encoding utf8
set terminal svg noenhanced size 900, height font "sans-serif,12" background "#ffffff"
set label "Time beside the peer's, which is 1: shorter is faster" at screen 0.03, screen 1 - 22 / height \
  font ",15" textcolor "#24292f"
set label about at screen 0.03, screen 1 - 44 / height noenhanced textcolor "#57606a"

set lmargin at screen 0.62
set rmargin at screen 0.92
set tmargin at screen 1 - above / height
set bmargin at screen below / height
set border 0
set style fill solid
set yrange [rows - 0.5 : -0.5]
set ytics nomirror scale 0 textcolor "#24292f"
set xrange [0 : 2]
set xtics 0, 0.5, 2 scale 0 textcolor "#57606a"
set x2tics 0, 0.5, 2 scale 0 textcolor "#57606a"
set grid xtics back linetype 1 linecolor "#d0d7de"
set arrow from 1, graph 0 to 1, graph 1 nohead linecolor "#57606a" linewidth 2 front

faster = 0x1a7f37
slower = 0xbc4c00
shown(ratio) = ratio > 2 ? 2 : ratio
plot data using (shown($3) / 2):0:(shown($3) / 2):(0.38):($3 > 1.05 ? slower : faster):ytic(sprintf("%s  :  %s", strcol(1), strcol(2))) \
       with boxxyerrorbars linecolor rgb variable notitle, \
     data using (2):0:(sprintf("%.2f", $3)) with labels right offset 6, 0 textcolor "#24292f" notitle

# Draws the time of one item over the number of items: bench/run gives data, a block of points for
# each series below its name, and image, the PNG to write.
set terminal pngcairo size 1000,600 font "DejaVu Sans,11"
set output image
set logscale x
set xlabel "items in the table"
set ylabel "processor time for each item, microseconds"
set xtics ("1,000" 1000, "3,000" 3000, "10,000" 10000, "30,000" 30000, "100,000" 100000)
set xrange [800:125000]
set yrange [0:*]
set grid y
set key outside below maxcols 2
stats data using 1 nooutput
plot for [block = 0:STATS_blocks - 1] data index block using 1:2 with linespoints \
  linewidth 2 pointtype 7 title columnheader(1)

# Draws how long each implementation takes for a document, in units of libteleform's whole job.
set terminal svg size 860,480 dynamic noenhanced font "sans-serif,13" background "white"
set output chart
set title "Time for one document into a fresh string (whole job of libteleform = 1, logarithmic)"
set style data histograms
set style histogram clustered gap 1
set style fill solid border -1
set boxwidth 0.9
set logscale y
set yrange [0.05:100]
set ytics (0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50)
set grid ytics
set key top left
set xtics rotate by -20
plot data using 2:xtic(1) title "directory of 32 entries" linecolor rgb "#2b6cb0", \
     data using 3 title "menu of 15 items, 3 soft keys" linecolor rgb "#90cdf4", \
     data using 4 title "text screen, 1 soft key" linecolor rgb "#f6ad55"

# Draws the course of a long crawl as SVG: memory and the cost of a page against the pages done. Reads lines of
# "PAGES TICKS KIBIBYTES"; needs -v total=PAGES -v hz=TICKS-A-SECOND. Forty steps of pages, so that a busy moment is a dot.
function x(pages) { return left + width * pages / total }
function y(part) { return top + height * (1 - part) }
function line(values, count, most, colour,    i, points) {
  for (i = 1; i <= count; ++i) points = points sprintf("%.1f,%.1f ", x(at[i]), y(values[i] / most))
  printf "<polyline fill=\"none\" stroke=\"%s\" stroke-width=\"2\" points=\"%s\"/>\n", colour, points
}
function text(where_x, where_y, anchor, colour, words) {
  printf "<text x=\"%d\" y=\"%d\" text-anchor=\"%s\" fill=\"%s\">%s</text>\n", where_x, where_y, anchor, colour, words
}
BEGIN { left = 70; top = 40; width = 560; height = 240; memory_colour = "#2a6fb0"; cost_colour = "#b3541e"; grey = "#777" }
$1 >= (count + 1) * total / 40 && $1 > pages {
  ++count
  at[count] = $1
  cost[count] = ($2 - ticks) * 1000 / hz / ($1 - pages)
  memory[count] = $3 / 1024
  if (memory[count] > most_memory) most_memory = memory[count]
  if (cost[count] > most_cost) most_cost = cost[count]
  pages = $1
  ticks = $2
}
END {
  memory_top = 50 * int(most_memory / 50 + 1)
  cost_top = 0.1 * int(most_cost / 0.1 + 1)
  print "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 700 330\" font-family=\"sans-serif\" font-size=\"13\">"
  print "<title>Memory and cost of a page in a crawl of " total " pages</title>"
  print "<rect width=\"700\" height=\"330\" fill=\"white\"/>"
  for (i = 0; i <= 4; ++i) {
    printf "<line x1=\"%d\" x2=\"%d\" y1=\"%.1f\" y2=\"%.1f\" stroke=\"#ddd\"/>\n", left, left + width, y(i / 4), y(i / 4)
    text(left - 8, y(i / 4) + 4, "end", memory_colour, sprintf("%.0f", memory_top * i / 4))
    text(left + width + 8, y(i / 4) + 4, "start", cost_colour, sprintf("%.2f", cost_top * i / 4))
    text(x(total * i / 4), top + height + 20, "middle", grey, sprintf("%d", total * i / 4))
  }
  text(left, 22, "start", memory_colour, "memory, MB")
  text(left + width, 22, "end", cost_colour, "processor ms a page")
  text(left + width / 2, top + height + 40, "middle", grey, "pages done")
  line(memory, count, memory_top, memory_colour)
  line(cost, count, cost_top, cost_colour)
  print "</svg>"
}

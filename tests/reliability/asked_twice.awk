# Of what a web was asked for by runs that were killed, the first page that was asked for again although it was finished.
# In the log stand addresses, "run" where another run begins, and "visit" where everything is visited anew. Of each host
# only the page that was under way at a kill may come again: the last one of the run.
$0 == "visit" { delete asked; delete last; delete may_come_again; next }
$0 == "run" { for (host in last) may_come_again[host] = last[host]; delete last; next }
{
  split($0, parts, "/")
  host = parts[3]
  if ($0 in asked && may_come_again[host] != $0) { print $0; exit }
  asked[$0] = 1
  last[host] = $0
}

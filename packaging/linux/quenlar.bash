# Completion of quenlar for bash, made by `quenlar describe bash`.
_quenlar() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --home) ((++i)) ;;
      -*) ;;
      *) command=${COMP_WORDS[i]}; break ;;
    esac
  done
  case $command:$before in
    *:--home) COMPREPLY=($(compgen -d -- "$word")); return ;;
    collect:--from) COMPREPLY=($(compgen -f -- "$word")); return ;;
    collect:--name) local IFS=$'\n'; COMPREPLY=($(compgen -W "$(quenlar collections 2>/dev/null | cut -f1)" -- "$word")); return ;;
    collect:--links) COMPREPLY=($(compgen -f -- "$word")); return ;;
    collect:--scope) COMPREPLY=($(compgen -W "host site anywhere" -- "$word")); return ;;
    collect:--depth) COMPREPLY=(); return ;;
    collect:--pages) COMPREPLY=(); return ;;
    collect:--pages-per-host) COMPREPLY=(); return ;;
    collect:--minutes) COMPREPLY=(); return ;;
    collect:--addresses) COMPREPLY=(); return ;;
    collect:--hosts) COMPREPLY=(); return ;;
    collect:--delay) COMPREPLY=(); return ;;
    collect:--robots) COMPREPLY=($(compgen -W "obey ignore" -- "$word")); return ;;
    collect:--contact) COMPREPLY=(); return ;;
    collect:--search) COMPREPLY=(); return ;;
    collect:--language) COMPREPLY=($(compgen -W "en fr de it es ja" -- "$word")); return ;;
    collect:--remove) COMPREPLY=(); return ;;
    collect:--extract) COMPREPLY=(); return ;;
    collect:--format) COMPREPLY=($(compgen -W "lines csv jsonl" -- "$word")); return ;;
    collect:--proxy) COMPREPLY=(); return ;;
    collect:--warc) COMPREPLY=($(compgen -f -- "$word")); return ;;
    collect:--summary) COMPREPLY=($(compgen -f -- "$word")); return ;;
    harvest:--format) COMPREPLY=($(compgen -W "lines csv jsonl" -- "$word")); return ;;
    harvest:--name) local IFS=$'\n'; COMPREPLY=($(compgen -W "$(quenlar collections 2>/dev/null | cut -f1)" -- "$word")); return ;;
    harvest:--jobs) COMPREPLY=(); return ;;
    harvest:--robots) COMPREPLY=($(compgen -W "obey ignore" -- "$word")); return ;;
    harvest:--remove) COMPREPLY=(); return ;;
    harvest:--extract) COMPREPLY=(); return ;;
    harvest:--summary) COMPREPLY=($(compgen -f -- "$word")); return ;;
    addresses:--format) COMPREPLY=($(compgen -W "lines csv jsonl html" -- "$word")); return ;;
    addresses:--place) COMPREPLY=($(compgen -W "text mailto attribute script comment protected" -- "$word")); return ;;
    addresses:--site) COMPREPLY=(); return ;;
    addresses:--since) COMPREPLY=(); return ;;
    why:--format) COMPREPLY=($(compgen -W "text jsonl" -- "$word")); return ;;
    suppress:--import) COMPREPLY=($(compgen -f -- "$word")); return ;;
    suppress:--remove) COMPREPLY=(); return ;;
    extract:--format) COMPREPLY=($(compgen -W "lines csv jsonl" -- "$word")); return ;;
    extract:--language) COMPREPLY=($(compgen -W "en fr de it es ja" -- "$word")); return ;;
    extract:--save-interval) COMPREPLY=($(compgen -W "30 50 100" -- "$word")); return ;;
    extract:--other-sites) COMPREPLY=($(compgen -W "yes no" -- "$word")); return ;;
    extract:--stop-number) COMPREPLY=(); return ;;
    extract:--export) COMPREPLY=($(compgen -W "addresses all" -- "$word")); return ;;
    extract:--remove) COMPREPLY=(); return ;;
    extract:--extract) COMPREPLY=(); return ;;
    extract:--search-engine) COMPREPLY=(); return ;;
    extract:--proxy) COMPREPLY=(); return ;;
    extract:--summary) COMPREPLY=($(compgen -f -- "$word")); return ;;
    merge:-o | merge:--output) COMPREPLY=($(compgen -f -- "$word")); return ;;
    filter:--remove) COMPREPLY=(); return ;;
    filter:--extract) COMPREPLY=(); return ;;
  esac
  case $command:$word in
    :-*) COMPREPLY=($(compgen -W "-h --help --home --version" -- "$word")) ;;
    collect:-*) COMPREPLY=($(compgen -W "-h --help --from --name --links --scope --depth --pages --pages-per-host --minutes --addresses --hosts --delay --robots --contact --decode-protected --again --search --language --remove --extract --format --proxy --assume-online --warc --summary --version" -- "$word")) ;;
    harvest:-*) COMPREPLY=($(compgen -W "-h --help --format --name --jobs --decode-protected --robots --remove --extract --progress --summary --version" -- "$word")) ;;
    addresses:-*) COMPREPLY=($(compgen -W "-h --help --format --sources --place --site --since --version" -- "$word")) ;;
    why:-*) COMPREPLY=($(compgen -W "-h --help --format --version" -- "$word")) ;;
    collections:-*) COMPREPLY=($(compgen -W "-h --help --version" -- "$word")) ;;
    erase:-*) COMPREPLY=($(compgen -W "-h --help --suppress -y --yes --version" -- "$word")) ;;
    suppress:-*) COMPREPLY=($(compgen -W "-h --help --import --remove --version" -- "$word")) ;;
    extract:-*) COMPREPLY=($(compgen -W "-h --help --format --language --save-interval --other-sites --stop-number --export --remove --extract --search-engine --proxy --assume-online --summary --version" -- "$word")) ;;
    analyze:-*) COMPREPLY=($(compgen -W "-h --help --jsonl --version" -- "$word")) ;;
    projects:-*) COMPREPLY=($(compgen -W "-h --help --version" -- "$word")) ;;
    delete:-*) COMPREPLY=($(compgen -W "-h --help -y --yes --version" -- "$word")) ;;
    report:-*) COMPREPLY=($(compgen -W "-h --help --version" -- "$word")) ;;
    merge:-*) COMPREPLY=($(compgen -W "-h --help -o --output -f --force --version" -- "$word")) ;;
    options:-*) COMPREPLY=($(compgen -W "-h --help --version" -- "$word")) ;;
    filter:-*) COMPREPLY=($(compgen -W "-h --help --remove --extract --version" -- "$word")) ;;
    net:-*) COMPREPLY=($(compgen -W "-h --help -w --watch --version" -- "$word")) ;;
    demo:-*) COMPREPLY=($(compgen -W "-h --help --version" -- "$word")) ;;
    :*) COMPREPLY=($(compgen -W "collect harvest addresses why collections erase suppress extract analyze projects delete report merge options filter net demo" -- "$word")) ;;
    collect:*) COMPREPLY=() ;;
    harvest:*) COMPREPLY=($(compgen -f -- "$word")) ;;
    addresses:*) local IFS=$'\n'; COMPREPLY=($(compgen -W "$(quenlar collections 2>/dev/null | cut -f1)" -- "$word")) ;;
    why:*) local IFS=$'\n'; COMPREPLY=($(compgen -W "$(quenlar collections 2>/dev/null | cut -f1)" -- "$word")) ;;
    erase:*) COMPREPLY=() ;;
    suppress:*) COMPREPLY=() ;;
    extract:*) local IFS=$'\n'; COMPREPLY=($(compgen -W "$(quenlar projects 2>/dev/null)" -- "$word")) ;;
    delete:*) local IFS=$'\n'; COMPREPLY=($(compgen -W "$(quenlar projects 2>/dev/null)" -- "$word")) ;;
    report:*) local IFS=$'\n'; COMPREPLY=($(compgen -W "$(quenlar projects 2>/dev/null)" -- "$word")) ;;
    merge:*) COMPREPLY=($(compgen -f -- "$word")) ;;
    options:*) COMPREPLY=($(compgen -W "$(quenlar options 2>/dev/null | cut -d' ' -f1)" -- "$word")) ;;
  esac
}
complete -o filenames -F _quenlar quenlar

#!/usr/bin/env bash
# Shows that a test notices when a protection is gone: takes one after the other out of a copy of the sources, builds the
# test program that is named for it, and expects the named tests to fail (or not to come to their end). The work tree is
# left alone. usage: tests/reliability/protections.sh [NAME ...]      (all without names; the copy is build/without)
#                    tests/reliability/protections.sh --dry           (only: does each protection still stand where it did?)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
copy=$PWD/build/without
chosen=("$@")
noticed=0 missed=()
dry=
if [ "${1:-}" = --dry ]; then
  dry=yes chosen=()
else
  rm -rf "$copy"
  mkdir -p "$copy/build"
  git ls-files -z --cached | xargs -0 cp --parents -t "$copy"
  cd "$copy"
  cmake --preset linux >build/configure.log
fi

build() { # PROGRAM: the tests of the cluster are Python and need none
  [ "$1" != cluster ] || return 0
  local needed=("$1")
  [ "$1" != platform_test ] || needed+=(hostile_server)
  cmake --build --preset linux --target "${needed[@]}" >build/build.log 2>&1
}
run_tests() { # PROGRAM FILTER: true when they pass
  local launcher=()
  if [ "$1" = cluster ]; then
    (cd cluster && PYTHONDONTWRITEBYTECODE=1 timeout -k 5 120 /usr/bin/python3 -m pytest -q -p no:cacheprovider -k "$2") \
      >build/run.log 2>&1
    return
  fi
  [ "$1" != platform_test ] || launcher=(scripts/with_server.sh build/linux/hostile_server)
  QUENLAR_TEST_DATA=$PWD/tests timeout -k 5 120 "${launcher[@]}" "build/linux/$1" --gtest_filter="$2" >build/run.log 2>&1
}

# without NAME FILE PROGRAM FILTER EXPRESSION: the expression is Perl's and changes the whole text of the file, once.
without() {
  local name=$1 file=$2 program=$3 filter=$4 expression=$5 result
  if [ ${#chosen[@]} -gt 0 ] && [[ " ${chosen[*]} " != *" $name "* ]]; then return 0; fi
  local change="\$done = $expression; END { exit(\$done == 1 ? 0 : 1) }"
  if [ -n "$dry" ]; then
    perl -0777 -ne "$change" "$file" || missed+=("$name ($file)")
    return 0
  fi
  cp "$file" build/kept
  perl -0777 -pi -e "$change" "$file" || { echo "protections: $name: $file has changed" >&2; exit 2; }
  if ! build "$program"; then
    tail -n 20 build/build.log >&2
    echo "protections: $name: cannot be built" >&2
    exit 2
  fi
  if run_tests "$program" "$filter"; then
    result="NOT NOTICED by $filter"
    missed+=("$name")
  else
    result=$({
      grep -o '^\[  FAILED  \] [A-Za-z]*\.[A-Za-z0-9]*' build/run.log | awk '{ print $4 }'
      grep -oP '^FAILED .*::\K\w+' build/run.log
    } | sort -u | paste -sd' ' || true)
    result="fails: ${result:-$filter (does not come to its end)}"
    noticed=$((noticed + 1))
  fi
  printf '%-22s %s\n' "$name" "$result"
  cp build/kept "$file"
}

without atomic-replacement src/platform/posix/replacement.cpp platform_test 'FilesContract.*/*:FilesContract.*:PosixFilesTest.*' \
  's/std::string temporary = folder \+ "\/" \+ TemporaryName\(name\);/std::string temporary = (TemporaryName(name), target);/ + s/O_WRONLY \| O_CREAT \| O_EXCL \|/O_WRONLY | O_CREAT | O_TRUNC |/ - 1'
without decoded-limit src/platform/content_decoder.cpp platform_test '*ContentDecoder.Counts*:HostileServer.ACompressionBomb*' \
  's/if \(given_ > max_bytes_\) return false;//'
without announced-limit src/platform/answer_head.cpp platform_test 'AnswerHead.RefusesImpossibleLengths' \
  's/return content_length_ && \*content_length_ <= kMaxBodyBytes;/return content_length_.has_value();/'
without memory-for-a-page src/platform/posix/curl_transfer.cpp platform_test 'HostileServer.APageThatMemoryDoesNotHold*' \
  's/catch \(const std::bad_alloc&\)/catch (const char*)/'
without redirect-limit src/platform/redirect_chain.cpp platform_test 'HostileServer.ARedirectToItself*:HostileServer.TwentyHops*' \
  's/if \(\+\+redirects_ > kMaxRedirects\) return false;/++redirects_;/'
without certificates src/platform/posix/curl_transfer.cpp platform_test 'SecureServer.*' \
  's/CURLOPT_SSL_VERIFYPEER, 1L/CURLOPT_SSL_VERIFYPEER, 0L/'
without request-line src/platform/wire_address.cpp platform_test 'WireAddress.*' \
  's/if \(byte <= 0x20 \|\| byte >= 0x7F \|\|/if (byte == 0x20 ||/'
without filter-steps src/settings/filter_expression.cpp settings_test 'FilterWordsTest.PatternThatBacktracks*' \
  's/if \(--\*steps_left_ == 0\) throw StepLimit\(\);//'
without filter-file-aside src/settings/filter_file.cpp settings_test 'FilterFileTest.*' \
  's/words.keep_old_file = !bytes.ok\(\);//'
without file-names src/project/project_name.cpp project_test 'SafeFileName.*' \
  's/if \(IsUnusable\(name\[i\]\) \|\|/if ((IsUnusable(name[i]) && name.empty()) ||/'
without foreign-file-aside src/project/project_store.cpp project_test 'ProjectStoreTest.DataFileWithAnotherHeader*' \
  's/if \(!save\.keep_old\) return/return/'
without save-in-a-save src/project/project_store.cpp project_test 'ProjectStoreTest.SaveAskedForDuringASave*' \
  's/if \(save.under_way != nullptr\) \{\s*save.again = true;\s*return Status::Ok\(\);\s*\}//'
without links-in-flight src/project/data_file.cpp project_test 'DataFileTest.LinksInFlight*' \
  's/parts_\[section\] = \{queue.InFlight\(\),/parts_[section] = {{},/'
without report-first src/project/project_store.cpp project_test 'ReportBeforeData.*' \
  's/if \(!ReportIsBehind\(\)\) return Status::Ok\(\);/return Status::Ok();/'
without watchdog src/run/watchdog.cpp run_test 'WatchdogTest.*' \
  's/  stallSeconds_ = 0;\n  cancel_stalled_\(\);//'
without fault-in-a-parser src/web/ocx_parse_web.cpp web_test 'WebControl.AFaultInsideAParser*' \
  's/(parsed.whole;\n  \} catch \(const )std::exception&/$1char*/'
without one-program src/engine/home.cpp cli_test '*RefuseAFolder*:*RefusesAFolder*' \
  's/if \(!lock.ok\(\) && lock/if (false \&\& lock/ + s/  return lock;\n/  return files.Lock(installation.program_folder, "other " + std::to_string(reinterpret_cast<std::uintptr_t>(\&lock)));\n/ - 1'
without csv-formulas src/cli/address_format.cpp cli_test 'CsvField.*' \
  's/field \+= .\\..;/field += "";/'
without terminal src/cli/terminal_text.cpp cli_test 'ForTerminal.*:ExtractTest.NothingThatAPage*' \
  's/(std::string ForTerminal\(std::string_view text\) \{)/$1\n  if (!text.empty()) return std::string(text);/'
without line-limit src/cli/line_reader.cpp cli_test 'LineReader.*:Analyze.*' \
  's/line.size\(\) \+ length > longest_/line.size() + length == SIZE_MAX/'

# Of a collection.
without robots src/crawl/crawler_hosts.cpp crawl_test 'CrawlTest.RobotsTxtIs*:CrawlTest.AStartThatRobotsTxtForbids*' \
  's/if \(verdict.allowed\) return true;/if (verdict.allowed || !verdict.line.has_value() || true) return true;/'
without pace src/crawl/host_pace.cpp crawl_test 'CrawlTest.ThePauseRuns*:CrawlTest.ACrawlDelayHolds:HostPace.ThePause*' \
  's/parked_ = false;\n  ready_ = now \+ Pause\(took\);/parked_ = took.count() < 0;\n  ready_ = now;/'
without retry-after src/crawl/crawler_hosts.cpp crawl_test 'CrawlMannersTest.AHostThatAskedToWait*' \
  's/Failed\(collection_.SaveWait\(host, world_.clock.UtcSeconds\(\) \+ left.count\(\)\)\);/(void)host, (void)left;/'
without private-addresses src/platform/web_dispatcher.cpp platform_test 'HostileWeb.APrivateAddress*:HostileWeb.NothingIsSent*' \
  's/return request.private_addresses \|\| IsPublicAddress\(address\);/return request.private_addresses || IsPublicAddress(address) || true;/'
without judged-address src/platform/web_dispatcher.cpp platform_test 'HostileWeb.BehindAProxyNames*:HostileWeb.APrivateAddress*' \
  's/if \(!request.request.private_addresses && !IsPublicHost\(host.name\)\)/if (!request.request.private_addresses && !IsPublicHost(host.name) && host.name.empty())/'
without suppression src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.WhatTheFilters*' \
  's/if \(!world_.suppression.Keeps\(found.address\)\)/if (!world_.suppression.Keeps(found.address) \&\& found.address.empty())/'
without transactions src/collection/collection.cpp collection_test 'CollectionTest.WhatIsNotCommitted*' \
  's/return database_->Execute\("BEGIN IMMEDIATE"\);/return Status::Ok();/'
without commit-first src/crawl/crawler.cpp crawl_test 'CrawlAgainTest.WhatHasArrived*:CrawlAgainTest.AnAddressIsListed*' \
  's/if \(Failed\(collection_.CommitSoon\(\)\)\) return;//'
without body-limit src/platform/web_body.cpp platform_test 'HostileWeb.EndlessAndHugeBodies*' \
  's/  limit_ = limit;/  limit_ = limit | (SIZE_MAX >> 2);/'
without depth src/crawl/crawler.cpp crawl_test 'CrawlTest.LinksLeadNoDeeper*' \
  's/options_\(options\),/options_([\&] { CrawlOptions deep = options; deep.depth = 1000; return deep; }()),/'
without host-budget src/crawl/crawler_hosts.cpp crawl_test 'CrawlTest.AHostHasItsBudget*' \
  's/static_cast<std::uint64_t>\(visit.row.read\) >= options_.pages_per_host/options_.pages_per_host == 0/'
without traps src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.APathThatRepeats*' \
  's/if \(RepeatsSegments\(url->path\(\)\)\)/if (RepeatsSegments(url->path()) \&\& keys.empty() \&\& depth < 0)/'
without web-certificates src/platform/posix/curl_web_exchange.cpp platform_test 'SecureWeb.*' \
  's/CURLOPT_SSL_VERIFYPEER, 1L/CURLOPT_SSL_VERIFYPEER, 0L/'
without forged-certificates src/platform/posix/curl_web_exchange.cpp platform_test 'SecureWeb.AWrongCertificate*' \
  's/if \(holds == 0\) ERR_clear_error\(\);//'
without keyless-servers src/platform/posix/curl_web_exchange.cpp platform_test 'SecureWeb.AWrongCertificate*' \
  's/where != SSL_CB_WRITE_ALERT/alert != 0 || where != SSL_CB_WRITE_ALERT/'
without erased-bytes src/collection/erase_addresses.cpp collection_test 'EraseAddressesTest.*' \
  's/if \(const Status rewritten = database.Execute\(sql::kRewrite\); !rewritten.ok\(\)\) return rewritten;//'

without late-signal src/platform/posix/signal_watcher.cpp platform_test 'SignalWatcher.OneThatStays*' \
  's/if \(!stays_\) \{/{/'
without pinned-address src/platform/posix/curl_web_exchange.cpp platform_test 'HostileWeb.NothingIsSentWhere*' \
  's/if \(address_\) curl_easy_setopt\(handle_, CURLOPT_CONNECT_TO, connect_to_\);// + s/if \(exchange.address_ && IpAddressOf\(address->addr\) != exchange.address_\) return CURL_SOCKET_BAD;// - 1'
without rebound-name src/platform/web_dispatcher.cpp platform_test 'DispatcherOverTime.ANameThatComes*' \
  's/if \(!Permits\(request.request, address\)\) continue;/static std::string judged;\n    if (!Permits(request.request, address) \&\& judged != host.name) continue;\n    judged = host.name;/'
without kept-connection src/platform/web_dispatcher.cpp platform_test 'Dispatcher.AConnectionToAPrivate*' \
  's/if \(Permits\(request.request, address\)\) return Send\(host, address\);/return Send(host, address);/'
without connections-of-address src/platform/web_dispatcher_connections.cpp platform_test 'Dispatcher.AtMostFour*' \
  's/if \(address && addresses_\[\*address\].connected.size\(\) >= kConnectionsPerAddress\)/if (address \&\& addresses_[*address].connected.size() >= 1000)/'
without silence src/platform/web_dispatcher.cpp platform_test 'HostileWeb.SilenceIsATimeout' \
  's/const Instant silent = transport_->LastByte\(id\) \+ request.silence_limit;/const Instant silent = whole;/'
without whole-time src/platform/web_dispatcher.cpp platform_test 'HostileWeb.AByteNowAndThen*' \
  's/(const Instant silent = transport_->LastByte\(id\) \+ request.silence_limit;)\n    if \(std::min\(whole, silent\) > now\)/$1\n    if (silent > now)/'
without private-links src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.APublicPageNeverLeads*' \
  's/offer.may_be_private = private_place;/offer.may_be_private = private_place || depth > 0;/'
without private-redirects src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.ARedirectOfAPublicStart*' \
  's/offer.may_be_private = visit.page->may_be_private && CameFromPrivatePlace\(\*visit.url, answer\);/offer.may_be_private = visit.page->may_be_private;/'
without private-robots src/crawl/crawler_hosts.cpp crawl_test 'CrawlTest.ARobotsTxtOfAPublicPlace*' \
  's/visit.robots_may_be_private = visit.robots_may_be_private && CameFromPrivatePlace\(from, answer\);/(void)from;/'
without no-robots src/crawl/crawler_hosts.cpp crawl_test 'CrawlTest.NothingIsAskedForWhile*' \
  's/if \(status >= 500\) return OnNoRobots\(.*?\);//'
without endless-robots src/crawl/crawler_hosts.cpp crawl_test 'CrawlRulesTest.AtMostHalfAMebibyte*' \
  's/request.body_limit = kMostRobotsBytes \+ 1;//'
without noindex src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.Noindex*' \
  's/if \(!options_.obey_robots \|\| !page.robots.noindex\(\)\) \{/{/'
without nofollow src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.Noindex*' \
  's/const bool follow = !seen.value\(\) && !\(options_.obey_robots && page.robots.nofollow\(\)\);/const bool follow = !seen.value();/ + s/options_.obey_robots \? LinkFollow::kFollowed : LinkFollow::kUnasked/LinkFollow::kUnasked/ - 1'
without five-redirects src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.MoreThanFiveRedirects*' \
  's/if \(!target \|\| hops > kMostHops\)/if (!target || hops > 100 * kMostHops)/'
without same-body src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.ASameBody*' \
  's/const bool follow = !seen.value\(\) && /const bool follow = /'
without failing-hosts src/crawl/crawler_hosts.cpp crawl_test 'CrawlTest.FiveFailures*' \
  's/if \(\+\+visit.memory.failures < kMostFailures\) return false;/if (++visit.memory.failures < 1000 * kMostFailures) return false;/'
without looping-search src/crawl/crawler_search.cpp crawl_test 'CrawlFaultsTest.ASearchServiceThatLoops*' \
  's/if \(brought_new && \+\+search_.page <= kMostSearchPages\)/if (brought_new || ++search_.page > 0)/'
without no-fall-back src/crawl/crawler_starts.cpp crawl_test 'CrawlTest.ABadCertificate*' \
  's/const bool nothing_answers = /const bool nothing_answers = answer.failure == WebFailure::kCertificate || /'
without suppressed-texts src/crawl/crawler_pages.cpp crawl_test 'CrawlTest.*NamesASuppressedAddress*' \
  's/(bool Crawler::NamesSuppressed\(std::string_view text\) \{ return )/$1text.empty() \&\& /'
without suppressed-rules src/crawl/crawler_hosts.cpp crawl_test 'CrawlTest.WhatNamesASuppressedAddress*' \
  's/if \(!NamesSuppressed\(host.robots\)\) \{/if (!NamesSuppressed(host.robots) || true) {/'
without suppression-of-harvests src/cli/harvest_run.cpp cli_test 'HarvestCommandTest.SuppressedAddresses*' \
  's/\} else if \(!suppression_.Keeps\(text\)\) \{/} else if (!suppression_.Keeps(text) \&\& text.empty()) {/'
without suppressed-texts-of-harvests src/cli/harvest_run.cpp cli_test 'HarvestCommandTest.TitlesAndPages*' \
  's/(bool HarvestRun::NamesSuppressed\(std::string_view text\) \{\n  return )/$1text.empty() \&\& /'
without suppression-of-lists src/cli/addresses.cpp torture_test 'HandWrittenList.HoldsForEveryList*' \
  's/  reader.value\(\)->LeaveOut\(.*?\);\n//'
without suppression-in-the-window src/engine/collection_job.cpp forms_test 'CollectingWindow.AHandWritten*' \
  's/  reader.value\(\)->LeaveOut\(.*?\);\n//'
without suppression-of-old-finds src/cli/collect_run.cpp torture_test 'HandWrittenList.HoldsForTheFileFromTheNextRun*' \
  's/if \(Status erased = EraseSuppressed\(files, path, suppression_, notices\); !erased.ok\(\)\) return erased;//'
without suppression-of-old-harvests src/cli/harvest_run.cpp torture_test 'HandWrittenList.HoldsForTheFileFromTheNextHarvest*' \
  's/if \(Status erased = EraseSuppressed\(platform_.files, path, suppression_, notices\); !erased.ok\(\)\) return erased;//'
without suppression-of-shown-finds src/engine/collection_job.cpp forms_test 'CollectingWindow.AHandWritten*' \
  's/const Status erased = EraseSuppressed\(.*?\);/const Status erased;/'
without suppression-of-reports src/engine/engine.cpp cli_test 'SuppressCommandTest.ReportsAre*' \
  's/projects.SetSuppression\(&suppression\);//'
without suppression-of-books src/cli/merge.cpp cli_test 'SuppressCommandTest.BooksAre*' \
  's/merge.SetSuppression\(&suppression.value\(\)\);//'
without suppression-that-is-unreadable src/cli/load_suppression.cpp cli_test 'SuppressCommandTest.NothingIsListed*' \
  's/\n  return list;/\n  if (!list.ok()) return SuppressionList();\n  return list;/'

# Of the file of a collection.
without cut-files src/collection/schema_version.cpp torture_test 'CollectionFile.ThatIsCutAnywhere*' \
  's/if \(cut_short.value\(\)\) return .*?;\n//'
without damaged-pages src/collection/collection.cpp collection_test 'CollectionTest.ADamagedPage*' \
  's/is_new \? MakeSchema\(\) : CheckSound\(\*database_\)/is_new ? MakeSchema() : (void(CheckSound), Status::Ok())/'
without newer-files src/collection/schema_version.cpp torture_test 'CollectionFile.OfANewerProgram*' \
  's/if \(version.value\(\) > sql::kSchemaVersion\)/if (version.value() < 0)/'
without files-of-others src/collection/schema_version.cpp collection_test 'CollectionTest.AFileOfAnotherProgram*' \
  's/return tables.value\(\) == 0 \? /return tables.value() >= 0 ? /'
without moved-files src/collection/collection.cpp collection_test 'MovedCollection.ADeletedFileIsNoticedAtTheNextCommit' \
  's/if \(const Status there = CheckFiles\(\); !there.ok\(\)\) return there;\n  return unsynced_/return unsynced_/'
without moved-files-in-a-run src/collection/collection.cpp collection_test 'MovedCollection.ADeletedFileIsNoticedWhile*' \
  's/if \(const Status there = CheckFiles\(\); !there.ok\(\)\) return there;\n  \}/}/'
without moved-logs src/collection/database.cpp collection_test 'MovedCollection.OfALog*' \
  's/return size > 0 && PresenceOf/return size < 0 \&\& PresenceOf/'
without log-of-a-moved-file src/collection/collection.cpp collection_test 'MovedCollection.AMovedFile*' \
  's/database_->Execute\(sql::kEmptyLog\).Ignore\(.*?\);//'
without protected-folders src/collection/database.cpp torture_test 'CollectionFile.ThatIsWriteProtectedIsRead*' \
  's/return uri \+ "\?immutable=1";/return uri;/'
without protected-halves src/collection/database.cpp torture_test 'CollectionFile.ThatIsWriteProtectedAfterAKill*' \
  's/switch \(PresenceOf\(path \+ "-wal"\)\)/switch (Presence::kMissing)/'
without traces-of-an-erasure src/collection/erase_addresses.cpp torture_test 'Torture.AnErasureThatIsCutShort*' \
  's/if \(done.ok\(\) && changed\) done = database.Execute\(sql::kMarkTraces\);//'
without rows-behind-their-commit src/cli/harvest_run.cpp torture_test 'Torture.AHarvest*' \
  's/if \(!committed\) return true;/(void)committed;/'
without markup-of-the-overview src/collection/script_text.cpp collection_test 'OverviewTest.NothingFromOutside*' \
  's/ && code != .<. && code != .>. && code != .&.;/;/'

# Of archives.
without unpacked-limit src/archive/http_message.cpp archive_test 'HttpMessageTest.NoMoreThanTheLimit*' \
  's/last \? limit : 2 \* limit/last ? SIZE_MAX : 2 * limit/'
without unpacked-limit-of-streams src/archive/unpack_body.cpp archive_test 'PackingsTest.TornBodies*' \
  's/while \(out.size\(\) < limit\) \{/limit = SIZE_MAX;\n  while (out.size() < limit) {/'
without archives-of-others src/archive/warc_writer.cpp archive_test 'WarcWriterTest.NoFileThatExists*' \
  's/writer->number_ = std::max\(writer->number_, NumberOf\(file, name\) \+ 1\);/(void)file, (void)NumberOf;/'

# Of a cluster.
without cluster-whole-files cluster/quenlar_cluster/files.py cluster test_a_file_is_replaced_whole \
  's/temporary = _temporary_name\(path\)/temporary = path/'
without cluster-made-parts cluster/quenlar_cluster/harvest_task.py cluster test_a_part_that_is_there \
  's/if not part.exists\(\):/if job.number:/'
without cluster-links-once cluster/quenlar_cluster/frontier.py cluster test_links_are_handed_out_once \
  's/WHERE excluded.distance < distance OR/WHERE excluded.distance >= distance OR/'
without cluster-lost-lease cluster/quenlar_cluster/collect_task.py cluster test_a_worker_that_has_lost \
  's/if not lease.held\(\):\n            raise TaskFailed\("the lease was lost"\)\n        keep_notices/keep_notices/'
without cluster-lease cluster/quenlar_cluster/lease.py cluster test_one_gets_it \
  's/os.link\(draft, self._path\)/os.replace(draft, self._path)/'

if [ -n "$dry" ]; then
  [ ${#missed[@]} -eq 0 ] || printf 'protections: %s has changed\n' "${missed[@]}" >&2
  exit $((${#missed[@]} > 0))
fi
echo "protections: $noticed of $((noticed + ${#missed[@]})) are noticed when they are taken out${missed[0]:+; not noticed: ${missed[*]}}"
[ ${#missed[@]} -eq 0 ]

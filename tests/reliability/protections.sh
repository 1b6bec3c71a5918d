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

build() { cmake --build --preset linux --target "$@" >build/build.log 2>&1; }
run_tests() { # PROGRAM FILTER: true when they pass
  local launcher=()
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
  if ! build "$program" $([ "$program" != platform_test ] || echo hostile_server); then
    tail -n 20 build/build.log >&2
    echo "protections: $name: cannot be built" >&2
    exit 2
  fi
  if run_tests "$program" "$filter"; then
    result="NOT NOTICED by $filter"
    missed+=("$name")
  else
    result=$(grep -o '^\[  FAILED  \] [A-Za-z]*\.[A-Za-z0-9]*' build/run.log | awk '{ print $4 }' | sort -u | paste -sd' ' || true)
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

if [ -n "$dry" ]; then
  [ ${#missed[@]} -eq 0 ] || printf 'protections: %s has changed\n' "${missed[@]}" >&2
  exit $((${#missed[@]} > 0))
fi
echo "protections: $noticed of $((noticed + ${#missed[@]})) are noticed when they are taken out${missed[0]:+; not noticed: ${missed[*]}}"
[ ${#missed[@]} -eq 0 ]

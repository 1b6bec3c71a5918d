#!/usr/bin/env python3
"""Makes web archives of pages: PREFIX.warc, PREFIX.warc.gz (a gzip member a record) and PREFIX.one.warc.gz (a single one).

usage: make_archive.py LIST-OF-PAGES MOST-BYTES PREFIX
"""
import sys
import zlib

LEVEL = 6
GZIP = 15 + 16


def record(number, body):
    answer = b"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: %d\r\n\r\n%s" % (len(body), body)
    return (b"WARC/1.1\r\nWARC-Type: response\r\nWARC-Record-ID: <urn:uuid:00000000-0000-4000-8000-%012d>\r\n"
            b"WARC-Date: 2026-11-22T10:%02d:%02dZ\r\nWARC-Target-URI: http://www.firma.de/page%d.html\r\n"
            b"Content-Type: application/http;msgtype=response\r\nContent-Length: %d\r\n\r\n%s\r\n\r\n" %
            (number, number // 60 % 60, number % 60, number, len(answer), answer))


def main():
    pages, most, prefix = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    size = count = 0
    one = zlib.compressobj(LEVEL, zlib.DEFLATED, GZIP)
    with open(pages) as names, open(prefix + ".warc", "wb") as plain, open(prefix + ".warc.gz", "wb") as members, \
            open(prefix + ".one.warc.gz", "wb") as single:
        for name in names:
            with open(name.rstrip("\n"), "rb") as page:
                whole = record(count, page.read())
            if size + len(whole) > most:
                break
            size += len(whole)
            count += 1
            plain.write(whole)
            member = zlib.compressobj(LEVEL, zlib.DEFLATED, GZIP)
            members.write(member.compress(whole) + member.flush())
            single.write(one.compress(whole))
        single.write(one.flush())
    print(count, size)


main()

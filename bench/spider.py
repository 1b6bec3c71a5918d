"""A Scrapy spider that does what `quenlar collect` does with one site, as simply as one writes it: it follows the links
of the site and writes every address once a page. usage: spider.py START-URL OUTPUT-FILE"""

import re
import sys
from urllib.parse import urlsplit

import scrapy
from scrapy.crawler import CrawlerProcess

ADDRESS = re.compile(r"[A-Za-z0-9.!#$%&'*+/=?^_`{|}~-]+@[A-Za-z0-9-]+(?:\.[A-Za-z0-9-]+)+")


class Addresses(scrapy.Spider):
    name = "addresses"
    custom_settings = {
        "LOG_LEVEL": "ERROR",
        "ROBOTSTXT_OBEY": True,
        "TELNETCONSOLE_ENABLED": False,
        "CONCURRENT_REQUESTS_PER_DOMAIN": 1,
        "AUTOTHROTTLE_ENABLED": False,
        "DOWNLOAD_DELAY": 0,
    }

    def parse(self, response):
        title = response.css("title::text").get(default="")
        for address in sorted(set(ADDRESS.findall(response.text))):
            yield {"address": address, "page": response.url, "title": title}
        host = urlsplit(response.url).netloc
        for link in response.css("a::attr(href)").getall():
            target = response.urljoin(link)
            if urlsplit(target).netloc == host:
                yield scrapy.Request(target, self.parse)


if __name__ == "__main__":
    start, output = sys.argv[1:]
    process = CrawlerProcess({"FEEDS": {output: {"format": "jsonlines"}}})
    process.crawl(Addresses, start_urls=[start])
    process.start()

#!/usr/bin/env perl
# Writes src/page/letter_ranges.h from the tables of Unicode that Perl comes with.
use strict;
use warnings;
no warnings 'utf8';
use Unicode::UCD;

my ($none, $parted, $unparted, $invisible) = (0, 1, 2, 3);

# Scripts that write on without blanks between words, and Korean, which hangs endings on foreign words. LineBreak=SA
# are those of South East Asia.
my $without_blanks = join '|', map { "\\p{Script=$_}" } qw(Han Hiragana Katakana Hangul Bopomofo Yi Nushu Tangut
  Khitan_Small_Script Tibetan Javanese Balinese);
$without_blanks = qr/$without_blanks|\p{LineBreak=SA}|\p{LineBreak=CJ}/;

# Marks and letters that several scripts of East Asia share, and wide digits.
my @east_asian = ([0x3005, 0x3006], [0x302A, 0x302F], [0x3031, 0x3035], [0x303B, 0x303C], [0x3099, 0x309C],
  [0x30FC, 0x30FC], [0xFF10, 0xFF19], [0xFF70, 0xFF70], [0xFF9E, 0xFF9F]);
# Soft hyphen, zero width blanks and joiners, variation selectors.
my @unseen = ([0xAD, 0xAD], [0x200B, 0x200D], [0x2060, 0x2060], [0xFE00, 0xFE0F], [0xFEFF, 0xFEFF],
  [0xE0100, 0xE01EF]);

sub within { my $code = shift; return grep { $code >= $_->[0] && $code <= $_->[1] } @_ }

sub kind {
  my $code = shift;
  return $none if $code >= 0xD800 && $code <= 0xDFFF;
  return $invisible if within($code, @unseen);
  my $character = chr $code;
  return undef if $character =~ /\p{Cn}|\p{Co}/;  # goes with what stands before it
  return $none if $code >= 0x20D0 && $code <= 0x20FF || $character !~ /\p{L}|\p{M}|\p{Nd}/;
  return $unparted if $character =~ $without_blanks || within($code, @east_asian);
  return $parted;
}

my (@ranges, $last);
for my $code (0x80 .. 0x3FFFF, 0xE0000 .. 0xE01EF) {
  my $kind = kind($code);
  next if !defined $kind || defined $last && $kind == $last;
  push @ranges, sprintf '0x%X', $code * 4 + $kind;
  $last = $kind;
}

my $version = Unicode::UCD::UnicodeVersion();
open my $out, '>', 'src/page/letter_ranges.h' or die $!;
print $out <<"END";
// The letters beyond ASCII and their kinds. Made by scripts/letter_ranges.pl from the properties
// General_Category, Script and Line_Break of Unicode $version.
#pragma once

#include <cstdint>

namespace quenlar {

// Where a range begins (times four) plus its LetterKind, ascending; a range ends where the next one begins.
inline constexpr std::uint32_t kLetterRanges[] = {
    ${\ join ', ', @ranges},
};

}  // namespace quenlar
END

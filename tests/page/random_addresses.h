// Texts at random in which addresses, signs, words for signs and what spoils them stand close together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "page/text_run.h"

namespace quenlar {

struct RandomRun {
  std::string text;
  std::vector<Joint> joints;
};

inline std::string_view RandomPiece(std::mt19937& random) {
  static const std::vector<std::string_view> kPieces = {"@",
                                                        "@",
                                                        "@",
                                                        "@",
                                                        ".",
                                                        ".",
                                                        ".",
                                                        "-",
                                                        "_",
                                                        "'",
                                                        "=",
                                                        "/",
                                                        "?",
                                                        "&",
                                                        "#",
                                                        "{",
                                                        "}",
                                                        "|",
                                                        "`",
                                                        "+",
                                                        "%",
                                                        "*",
                                                        "a",
                                                        "b",
                                                        "x",
                                                        "name",
                                                        "info",
                                                        "o'neil",
                                                        "git",
                                                        "GIT",
                                                        "Info",
                                                        "1",
                                                        "firma",
                                                        "mail",
                                                        "example",
                                                        "x1-y",
                                                        "2x",
                                                        ".de",
                                                        ".com",
                                                        ".co.uk",
                                                        ".DE",
                                                        ".png",
                                                        ".de",
                                                        "firma.de",
                                                        "firma.de",
                                                        "@firma.de",
                                                        "a@firma.de",
                                                        "a@b.de",
                                                        "de",
                                                        " ",
                                                        " ",
                                                        " ",
                                                        "\n",
                                                        "\u00A0",
                                                        "\u3000",
                                                        ",",
                                                        ";",
                                                        ":",
                                                        "\"",
                                                        "<",
                                                        ">",
                                                        "(",
                                                        ")",
                                                        "[",
                                                        "]",
                                                        "!",
                                                        "..",
                                                        "...",
                                                        "ü",
                                                        "é",
                                                        "п",
                                                        "\u0308",
                                                        "ま",
                                                        "で",
                                                        "ー",
                                                        "公司",
                                                        ".中国",
                                                        ".cn",
                                                        "メ",
                                                        "한",
                                                        "ภ",
                                                        "\u00AD",
                                                        "\u200B",
                                                        "\uFE0F",
                                                        "[at]",
                                                        "(AT)",
                                                        "{ at }",
                                                        "<at>",
                                                        " at ",
                                                        " At ",
                                                        "[ät]",
                                                        "(Ät)",
                                                        " アット ",
                                                        "[アット]",
                                                        " klammeraffe ",
                                                        "(arroba)",
                                                        "[dot]",
                                                        " [dot] ",
                                                        "(DOT)",
                                                        " dot ",
                                                        " point ",
                                                        "{punkt}",
                                                        " Punto ",
                                                        " ドット ",
                                                        "(ドット)",
                                                        "[at",
                                                        "dot]",
                                                        "at",
                                                        "dot",
                                                        "http://",
                                                        "https://user:",
                                                        "://",
                                                        "mailto:",
                                                        "MAILTO:",
                                                        "?cc=",
                                                        "&bcc=",
                                                        "&subject=",
                                                        "%40",
                                                        "%2C",
                                                        "%25",
                                                        "%",
                                                        "\\u0040",
                                                        "\\x40",
                                                        "\\/",
                                                        "\\n",
                                                        "\\t",
                                                        "\\\\",
                                                        "\\",
                                                        "\\'",
                                                        "\\\"",
                                                        "\\u00fc",
                                                        "\\u516c",
                                                        "\\u0g",
                                                        "\\b",
                                                        "\xFF",
                                                        "\xE3"};
  return kPieces[random() % kPieces.size()];
}

// Joints stand between two characters only.
inline RandomRun MakeRandomRun(std::mt19937& random, std::size_t pieces) {
  RandomRun run;
  const bool with_joints = random() % 2 == 0;
  for (std::size_t i = 0; i < pieces; ++i) {
    run.text += RandomPiece(random);
    if (with_joints && random() % 3 == 0) {
      run.joints.push_back({static_cast<std::uint32_t>(run.text.size()), random() % 3 == 0});
    }
  }
  return run;
}

// A text that repeats one or two pieces many times.
inline std::string MakeHostileText(std::mt19937& random, std::size_t bytes) {
  std::string unit;
  for (std::size_t i = 1 + random() % 4; i > 0; --i) unit += RandomPiece(random);
  std::string text(RandomPiece(random));
  while (text.size() < bytes) text += unit;
  return text.append(RandomPiece(random)).append(RandomPiece(random));
}

}  // namespace quenlar

// The program's page analysis, built a second time from the same sources but without pump points.
#pragma once

#include <string_view>

// Analyses the page so many times over.
void AnalyseUnpumped(std::string_view page, int times);

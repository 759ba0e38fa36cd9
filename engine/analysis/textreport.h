// The analysis for a person: the channel table and the emitters, one line each.
#ifndef ANALYSIS_TEXTREPORT_H
#define ANALYSIS_TEXTREPORT_H

#include <string>

#include "analyzer.h"

namespace wsa
{

std::string textReport(const Analyzer& analyzer);

} // namespace wsa

#endif

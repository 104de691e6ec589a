// The tables and buffers that hang on a conversion's context, each made when the set-up asks for it.
//
// Every function answers false when memory is exhausted; what was made by then hangs on the context, where
// CloseConversion finds it.
#pragma once

#include "host/conversion.h"

namespace cvt::host {

/// Whether bands may be scaled: sizes or origins differ, or the source is clipped first.
bool MayScale(const ConversionSetup& setup);

/// The row of errors that diffusion carries on, zeroed.
bool AddErrorRow(tagCRLA* context, const ConversionSetup& setup);

/// Search table and snap map of an indexed destination.
bool AddSearchTables(tagCRLA* context, const ConversionSetup& setup);

/// Matrix, steps and cube table, when an indexed destination is reached by ordered dither.
bool AddDitherTables(tagCRLA* context, const ConversionSetup& setup);

/// The lines that scaling keeps, zeroed, when bands may be scaled.
bool AddScalingLines(tagCRLA* context, const ConversionSetup& setup);

}  // namespace cvt::host

#pragma once
// Planted fault: the bottom layer reaching up into an analysis.
#include "analysis/iri.h"

#pragma once

/// The driver manager's interface, of the platform that this is built for.

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif

// Names are what they say: SQLPrepare is the narrow one, whatever else is defined.
#ifndef SQL_NOUNICODEMAP
#define SQL_NOUNICODEMAP
#endif
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

static_assert(sizeof(SQLWCHAR) == 2, "texts travel as UTF-16");

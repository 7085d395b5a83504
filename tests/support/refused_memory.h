#pragma once

/// Requests of operator new that are refused, in programs that hold
/// refused_memory.cpp.

/// Grants `requests` more and refuses the one behind them; refuses none where
/// that is negative.
void refuseMemoryAfter(long requests);

/// Refuses none from here on. True if one was refused.
bool endMemoryRefusals();

#pragma once

#include "bench/receive/Report.h"
#include "bench/receive/Site.h"

#include <string>

namespace quillet::bench {

/// A generated chain in a database of its own.
struct Chain {
    std::string database;
    int members = 0; ///< rows of 40 columns that a first receive asks for; the large one's
};

/// The whole way, in alternating rounds: a first receive and a full update of the large chain
/// against their floors, and against the small chain's.
void measureReceives(Report& report, const Site& site, const Chain& large, const Chain& small,
                     int rounds);

/// Memory of the head office's server for one reply with every member twice.
void measureReply(Report& report, const Site& site, const Chain& chain);

/// First receives from the head office's server against the same from an earlier one, if there is
/// any.
/// @param counters that receive at the same time.
void measureServers(Report& report, const Site& site, const Chain& chain, int counters, int rounds);

/// Counters that receive at the same time from one server, against one that is alone.
void measureCounters(Report& report, const Site& site, const Chain& chain, int counters,
                     int rounds);

/// `Find` against a scan, on a recordset of so many keys.
void measureFind(Report& report, int count);

/// From the start of the process to the first painted window.
void measureStart(Report& report, const Site& site, const Chain& chain, int rounds);

} // namespace quillet::bench

#include "bench/receive/Counter.h"
#include "bench/receive/HeadOfficeProcess.h"
#include "bench/receive/Measurements.h"
#include "data/Recordset.h"
#include "rds/DataSpace.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace quillet::bench {

void measureReply(Report& report, const Site& site, const Chain& chain) {
    std::cerr << "one large reply" << std::endl;
    std::string ServerSql;
    {
        const HeadOfficeProcess headOffice(site.headOffice);
        Counter counter(site, headOffice.address(), chain.database);
        for (const std::string& query : counter.receiveInWindow().ServerQueries)
            if (query.find("CTMEM") != std::string::npos)
                ServerSql = query + " UNION ALL " + query;
    }
    const HeadOfficeProcess headOffice(site.headOffice); // whose peak is this reply's alone
    rds::RemoteObject object =
        rds::DataSpace().CreateObject("quorin.data", "http://" + headOffice.address());
    rds::Variant information;
    std::string connectionString = site.connectionString(chain.database);
    const data::Recordset rows = object.Getsql(ServerSql, 0, 1, information, connectionString);
    report.add({"peak memory of quillet-headoffice, reply of " +
                    std::to_string(rows.RecordCount()) + " rows",
                "MiB",
                {static_cast<double>(headOffice.peakMemory()) / 1024 / 1024},
                24,
                Figure::Goal::AtMost,
                Figure::Quote::Maximum});
}

} // namespace quillet::bench

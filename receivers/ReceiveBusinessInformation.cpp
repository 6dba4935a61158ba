#include "receivers/ReceiveBusinessInformation.h"

#include "data/AsciiText.h"
#include "receivers/Titles.h"
#include "sync/LeadingNumber.h"
#include "sync/Receiver.h"
#include "sync/SqlTemplate.h"

#include <array>

namespace quillet::receivers {

namespace {

/// The server row's columns.
enum Particular : std::size_t {
    Name,
    RegistrationNumber,
    Representative,
    Address1,
    Telephone,
    BusinessType,
    BusinessItem,
    Seats,
    Address2,
    Particulars
};

std::string serverSql(const std::string& storeCode) {
    return " SELECT RCT_NAME,RCT_NO,RCT_CEO,RCT_SADDR1,RCTI_CPHONE,RCT_KD,RCT_ST,RCTI_SEAT,"
           " RCT_SADDR2"
           " From RCT LEFT JOIN RCTI ON RCT.RCT_CODE = RCTI.RCT_CODE "
           " WHERE RCT.RCT_CODE = '" +
           storeCode + "' ";
}

using Texts = std::array<std::string, Particulars>;

Texts cleaned(const sync::ServerRow& row) {
    Texts V;
    for (std::size_t i = 0; i < V.size(); ++i) {
        V[i] = data::trimmed(row.text(i));
        if (V[i].empty())
            V[i] = " ";
    }
    return V;
}

bool isRegistered(std::string registrationNumber) {
    std::erase(registrationNumber, '-');
    return sync::leadingNumber(registrationNumber) != 0;
}

const sync::SqlTemplate
    Update(" UPDATE CF SET CF_CONTENTS = '{contents}' WHERE CF_PART = '회사' AND CF_IDX = {index} ",
           {"contents", "index"});

} // namespace

bool ReceiveBusinessInformation(sync::Run& run) {
    return sync::guardReceiver(run, BusinessInformationTitle, [&](std::size_t& /*handledRows*/) {
        const data::Recordset ServerRs = run.queryServer(serverSql(run.headOffice.storeCode));
        if (ServerRs.Eof())
            return;
        run.RowTotal = 8; // deliberately, however many statements follow
        const sync::ServerRow row(ServerRs);
        const Texts V = cleaned(row);
        const auto update = [&row](const std::string& contents, std::string_view CF_IDX) {
            return Update.render(row, std::array<std::string_view, 2>{contents, CF_IDX});
        };
        run.append(update(V[Seats], "13"));
        run.append(update(V[Name], "1"));
        if (isRegistered(V[RegistrationNumber]))
            run.append(update(V[RegistrationNumber], "2"));
        run.append(update(V[Representative], "3"));
        run.append(update(V[Address1] + " " + V[Address2], "4"));
        run.append(update(V[Telephone], "5"));
        run.append(update(V[BusinessType], "6"));
        run.append(update(V[BusinessItem], "7"));
    });
}

} // namespace quillet::receivers

// quillet-new-store FILE: makes an empty embedded store database.

#include "data/Error.h"
#include "db/store/EmptyStore.h"
#include "files/Paths.h"

#include <iostream>

int main(int argc, char* argv[]) {
    if (argc != 2 || argv[1][0] == '-') {
        std::cerr << "usage: quillet-new-store FILE\n"
                     "Makes an empty store database (all tables, no data), usually food.MDB.\n";
        return 2;
    }
    try {
        quillet::db::createEmptyStore(quillet::files::pathOf(argv[1]));
    } catch (const quillet::data::Error& error) {
        std::cerr << "quillet-new-store: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

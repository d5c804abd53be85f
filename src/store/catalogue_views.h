#pragma once
// The data views of the equipment catalogue and of the panel's lists, named as the forms name
// them. They belong to the context (one set each) and read the working database in force; the
// editors, the refresh routines and the dialogs move their current rows.

#include "store/data_view.h"

class Context;

struct CatalogueViews {
    DataView known;      // knownsignals, the band editor's grid
    DataView limData1;   // points of the limit in the editor
    DataView limData2;   // all limit heads by name
    DataView limData3;   // units
    DataView LGData1;    // points of the component in the editor
    DataView lgData2;    // all component heads by name
    DataView conData1;   // loshead: candidates for slot one
    DataView conData2;   // all configurations
    DataView conData3;   // loshead without antennas: candidates for slots two to five
    DataView detecData1; // limit heads for the max hold limit of the panel
    DataView detecData2; // limit heads for the average limit of the panel
    DataView measData1;  // units of the panel
    DataView measData2;  // configurations of the panel
    DataView measData3;  // loshead, for the distance of a configuration's first component
    DataView testData1;  // the EMC tests by name, the page fTest edits the current one
    DataView testData2;  // configurations of the page fTest
    DataView testData3;  // limit heads of the page fTest
    DataView testData4;  // units of the page fTest
    DataView emcData2;   // units, configurations, limit heads and components that applyEmcTest reads
    DataView emcData3;
    DataView emcData4;
    DataView emcData5;
    QString connection;  // of the working database the views read
};

// The views of this context, made on first use with their starting sources on the working
// database; when another working database has come into force since, they are bound to it first.
CatalogueViews &catalogueViews(const Context &ctx);
// The views let go of the working database before it is closed or replaced, sources kept; the
// next use binds them to the database then in force.
void releaseCatalogueViews(const Context &ctx);
// Every view on the working database now in force, sources kept (bindDataViews).
void rebindCatalogueViews(const Context &ctx);

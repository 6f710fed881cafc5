#pragma once

/// Copy cataloguing on the large school: the catalogue exported as MARC, 10,000 records imported in
/// one transaction, and a look-up by ISBN against a Z39.50 server on this machine.
void benchMarc();

// Takes the place of the PDF library's header for JSON, which the product doesn't use: it has a
// vector of a class that isn't complete yet, and this build's compiler refuses that in C++20.
#pragma once

#define JSON_HH

class JSON;

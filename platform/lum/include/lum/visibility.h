#pragma once

/// Marks what a library of the house exports; everything else is hidden (see cmake/UmlmmBuild.cmake).
#define UMLMM_API __attribute__((visibility("default")))

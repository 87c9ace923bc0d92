// SPDX-License-Identifier: Apache-2.0
#include "host/report/page_frame.h"

#include <fmt/format.h>

#include "host/report/assets.h"

namespace pciinfo {
namespace {

std::string Policy() {
  return fmt::format(
      "default-src 'none'; style-src '{}' '{}'; script-src '{}'; base-uri 'none'; "
      "form-action 'none'",
      kPageStyle.hash, kDrawingStyle.hash, kPageScript.hash);
}

void WriteAsset(Markup& markup, const char* element, const Asset& asset) {
  markup.Open(element);
  markup.Fixed(asset.text);
  markup.CloseLine();
}

void WriteHead(Markup& markup, const std::string& title) {
  markup.Fixed("<!DOCTYPE html>\n");
  markup.Open("html", {{"lang", "en"}});
  markup.Open("head");
  markup.Begin("meta", {{"charset", "utf-8"}});
  markup.Begin("meta", {{"http-equiv", "Content-Security-Policy"}, {"content", Policy()}});
  markup.Begin("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
  markup.Begin("meta", {{"name", "referrer"}, {"content", "no-referrer"}});
  markup.Element("title", {}, title);
  WriteAsset(markup, "style", kPageStyle);
  WriteAsset(markup, "style", kDrawingStyle);
  markup.CloseLine();
}

}  // namespace

void BeginPage(Markup& markup, const std::string& title) {
  WriteHead(markup, "PCI cards and slots: " + title);
  markup.Open("body");
  markup.Open("header");
  markup.Element("h1", {}, title);
}

void WriteSearch(Markup& markup) {
  markup.Open("div", {{"class", "find"}, {"id", "find"}, {"role", "search"}, {"hidden", "hidden"}});
  markup.Element("label", {{"for", "search"}}, "Find");
  markup.Begin("input", {{"type", "search"},
                         {"id", "search"},
                         {"autocomplete", "off"},
                         {"spellcheck", "false"},
                         {"placeholder", "card, slot, address or driver"}});
  markup.Element("output", {{"id", "found"}, {"for", "search"}}, "");
  markup.CloseLine();
}

void BeginMain(Markup& markup) {
  markup.CloseLine();
  markup.Open("main");
}

void BeginSection(Markup& markup, const std::string& id, const char* title) {
  markup.Open("section", {{"id", id}, {"aria-labelledby", id + "-title"}});
  markup.Element("h2", {{"id", id + "-title"}}, title);
}

void EndPage(Markup& markup, const std::string& origin) {
  markup.CloseLine();
  markup.Element("footer", {}, fmt::format("Made by pciinfo {} from {}.", PCIINFO_VERSION, origin));
  WriteAsset(markup, "script", kPageScript);
  markup.Close();
  markup.CloseLine();
}

}  // namespace pciinfo

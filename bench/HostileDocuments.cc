#include "bench/HostileDocuments.h"

#include <array>

namespace tamzo::bench {
namespace {

using std::size_t;
using std::string;
using std::string_view;
using std::to_string;

// ---- Frames: what stands around the hostile part --------------------------------------------

constexpr string_view kStart = "<VAST version=\"4.0\"><Ad id=\"h\"><InLine>";
constexpr string_view kEnd = "</InLine></Ad></VAST>";
constexpr string_view kLinearStart =
    "<Creatives><Creative><Linear><MediaFiles>"
    "<MediaFile type=\"video/mp4\">https://cdn.example/v.mp4</MediaFile></MediaFiles>";
constexpr string_view kLinearEnd = "</Linear></Creative></Creatives>";

string concat(std::initializer_list<string_view> parts) {
  size_t size = 0;
  for (const string_view part : parts) {
    size += part.size();
  }
  string all;
  all.reserve(size);
  for (const string_view part : parts) {
    all += part;
  }
  return all;
}

// A playable ad with `content` as the last child of its InLine.
string inLineWith(string_view content) {
  return concat({kStart, kLinearStart, kLinearEnd, content, kEnd});
}
string linearWith(string_view content) {
  return concat({kStart, kLinearStart, content, kLinearEnd, kEnd});
}
string vendorWith(string_view content) {
  return inLineWith(
      concat({"<Extensions><Extension><Tamzo>", content, "</Tamzo></Extension></Extensions>"}));
}
string withDoctype(string_view subset, string_view text = "") {
  return concat({"<!DOCTYPE VAST [", subset, "]>",
                 inLineWith(concat({"<Description>", text, "</Description>"}))});
}
string described(string_view text) {
  return inLineWith(concat({"<Description>", text, "</Description>"}));
}

// ---- Filling --------------------------------------------------------------------------------

string repeat(string_view piece, size_t bytes) {
  string text;
  text.reserve(bytes + piece.size());
  while (text.size() < bytes) {
    text += piece;
  }
  return text;
}

// `makePiece` of 0, 1, 2 … until there are enough bytes.
template <typename MakePiece>
string series(size_t bytes, MakePiece makePiece) {
  string text;
  text.reserve(bytes + 1024);
  for (size_t i = 0; text.size() < bytes; ++i) {
    text += makePiece(i);
  }
  return text;
}

string nested(string_view open, string_view inner, string_view close, size_t depth) {
  string text;
  text.reserve(depth * (open.size() + close.size()) + inner.size());
  for (size_t i = 0; i < depth; ++i) {
    text += open;
  }
  text += inner;
  for (size_t i = 0; i < depth; ++i) {
    text += close;
  }
  return text;
}

string comment(size_t bytes) { return "<!--" + string(bytes, 'c') + "-->"; }

// A run of 24 spaces and tabs, another for each number.
string blanksOf(size_t number) {
  string text;
  for (unsigned bit = 0; bit < 24; ++bit) {
    text += ((number >> bit) & 1U) == 0 ? ' ' : '\t';
  }
  return text;
}

// ---- Attributes and namespaces --------------------------------------------------------------

string attributes(size_t first, size_t count) {
  string text;
  for (size_t i = first; i < first + count; ++i) {
    text += " a" + to_string(i) + "=\"\"";
  }
  return text;
}

string attributesOfOneElement(size_t bytes) {
  return inLineWith("<x" + series(bytes, [](size_t i) { return attributes(i, 1); }) + "/>");
}
string attributesJustAllowed(size_t bytes) {
  const string element = "<x" + attributes(0, 790) + "/>";
  return inLineWith(repeat(element, bytes));
}
string attributesWithPrefixes(size_t bytes) {
  string element = "<x";
  for (size_t i = 0; i < 700; ++i) {
    element += " n:a" + to_string(i) + "=\"\"";
  }
  return inLineWith("<y xmlns:n=\"u\">" + repeat(element + "/>", bytes) + "</y>");
}
string longAttribute(size_t bytes) {
  return linearWith("<Icons><Icon program=\"" + string(bytes, 'p') + "\"/></Icons>");
}
string attributeOfReferences(size_t bytes) {
  return linearWith("<Icons><Icon program=\"" + repeat("&amp;&#65;", bytes) + "\"/></Icons>");
}

string declarations(size_t first, size_t count) {
  string text;
  for (size_t i = first; i < first + count; ++i) {
    text += " xmlns:n" + to_string(i) + "=\"u" + to_string(i) + "\"";
  }
  return text;
}
string namespacesOfOneElement(size_t bytes) {
  return inLineWith("<x" + series(bytes, [](size_t i) { return declarations(i, 1); }) + "/>");
}
string namespacesInScope(size_t bytes) {
  return inLineWith("<x" + declarations(0, 250) + ">" + repeat("<n0:e n0:a=\"\"/>", bytes) +
                    "</x>");
}
string namespacesOnEveryElement(size_t bytes) {
  return inLineWith(repeat("<x" + declarations(0, 240) + "/>", bytes));
}
string namespacesUndeclared(size_t bytes) {
  return inLineWith("<x" + declarations(0, 250) + ">" + repeat("<q:e/>", bytes) + "</x>");
}

// ---- Masses of what is read -----------------------------------------------------------------

string iconsWithDistinctPrograms(size_t bytes) {
  return linearWith(
      "<Icons>" +
      series(bytes, [](size_t i) { return "<Icon program=\"p" + to_string(i) + "\"/>"; }) +
      "</Icons>");
}
string iconsWithOneProgram(size_t bytes) {
  return linearWith("<Icons>" + repeat("<Icon program=\"p\"/>", bytes) + "</Icons>");
}
string distinctEventNames(size_t bytes) {
  return linearWith(
      "<TrackingEvents>" +
      series(bytes,
             [](size_t i) { return "<Tracking event=\"e" + to_string(i) + "\">u</Tracking>"; }) +
      "</TrackingEvents>");
}
string oneEventName(size_t bytes) {
  return linearWith("<TrackingEvents>" +
                    repeat("<Tracking event=\"e\" offset=\"00:00:01\">u</Tracking>", bytes) +
                    "</TrackingEvents>");
}
string lastEventNameless(size_t bytes) {
  return linearWith("<TrackingEvents>" + repeat("<Tracking event=\"e\">u</Tracking>", bytes) +
                    "<Tracking>u</Tracking></TrackingEvents>");
}
string extraEvents(size_t bytes) {
  return vendorWith(
      "<ExtraTrackingEvents>" +
      series(bytes,
             [](size_t i) { return "<Tracking event=\"e" + to_string(i) + "\">u</Tracking>"; }) +
      "</ExtraTrackingEvents>");
}
string linears(size_t bytes) {
  return inLineWith("<Creatives><Creative>" + repeat("<Linear/>", bytes) +
                    "</Creative></Creatives>");
}
string creatives(size_t bytes) {
  return inLineWith(repeat("<Creatives><Creative><Linear/></Creative></Creatives>", bytes));
}
string companions(size_t bytes) {
  return inLineWith("<Creatives><Creative><CompanionAds>" + repeat("<Companion/>", bytes) +
                    "</CompanionAds></Creative></Creatives>");
}
string companionEvents(size_t bytes) {
  return inLineWith(
      "<Creatives><Creative><CompanionAds><Companion><TrackingEvents>" +
      series(bytes,
             [](size_t i) { return "<Tracking event=\"e" + to_string(i) + "\">u</Tracking>"; }) +
      "</TrackingEvents></Companion></CompanionAds></Creative></Creatives>");
}
string verifications(size_t bytes) {
  return inLineWith("<Extensions><Extension><AdVerifications>" + repeat("<Verification/>", bytes) +
                    "</AdVerifications></Extension></Extensions>");
}
string verificationsOfAd(size_t bytes) {
  return inLineWith(
      "<AdVerifications>" +
      repeat("<Verification><ViewableImpression>u</ViewableImpression></Verification>", bytes) +
      "</AdVerifications>");
}
string moatMarkupInOneBlock(size_t bytes) {
  return inLineWith("<Extensions><Extension><AdVerifications>" +
                    repeat("<Verification><ViewableImpression/></Verification>", bytes) +
                    "</AdVerifications></Extension></Extensions>");
}
string moatMarkup(size_t bytes) {
  return inLineWith("<Extensions><Extension>" +
                    repeat("<AdVerifications><Verification><ViewableImpression/></Verification>"
                           "</AdVerifications>",
                           bytes) +
                    "</Extension></Extensions>");
}
string viewableImpressions(size_t bytes) {
  return inLineWith(repeat("<ViewableImpression/>", bytes));
}
string impressions(size_t bytes) { return inLineWith(repeat("<Impression/>", bytes)); }
string mediaFiles(size_t bytes) {
  return linearWith("<MediaFiles>" + repeat("<MediaFile/>", bytes) + "</MediaFiles>");
}
string categories(size_t bytes) { return inLineWith(repeat("<Category>c</Category>", bytes)); }
string extensions(size_t bytes) {
  return inLineWith("<Extensions>" + repeat("<Extension/>", bytes) + "</Extensions>");
}
string vendorBlocks(size_t bytes) {
  return inLineWith("<Extensions>" + repeat("<Extension><Tamzo/></Extension>", bytes) +
                    "</Extensions>");
}
string vendorBlocksOfOneSetting(size_t bytes) {
  return inLineWith(
      "<Extensions>" +
      repeat("<Extension><Tamzo><canReplay>u</canReplay></Tamzo></Extension>", bytes) +
      "</Extensions>");
}
string vendorBlocksInOneExtension(size_t bytes) {
  return inLineWith("<Extensions><Extension>" + repeat("<Tamzo/>", bytes) +
                    "</Extension></Extensions>");
}
string vendorChildren(size_t bytes) {
  return vendorWith(series(bytes, [](size_t i) { return "<v" + to_string(i) + "/>"; }));
}
string vendorChildrenOfOneName(size_t bytes) { return vendorWith(repeat("<ClientUA/>", bytes)); }
string vendorSettings(size_t bytes) {
  return inLineWith(
      "<Extensions>" +
      repeat("<Extension><Tamzo><AdditionalWebSettings/></Tamzo></Extension>", bytes) +
      "</Extensions>");
}
string cards(size_t bytes) { return vendorWith("<Cards>" + repeat("<Card/>", bytes) + "</Cards>"); }
string hotspots(size_t bytes) {
  return vendorWith("<Video360><Hotspots>" + repeat("<Hotspot a=\"\"/>", bytes) +
                    "</Hotspots></Video360>");
}
string ads(size_t bytes) {
  return concat({"<VAST version=\"4.0\">", repeat("<Ad><InLine/></Ad>", bytes), "</VAST>"});
}
string wrappers(size_t bytes) {
  return concat({"<VAST version=\"4.0\"><Ad>", repeat("<Wrapper/>", bytes), "</Ad></VAST>"});
}
string wrapperWithTag(string_view tag) {
  return concat({"<VAST version=\"4.0\"><Ad><Wrapper><VASTAdTagURI>https://a.example/", tag,
                 "</VASTAdTagURI></Wrapper></Ad></VAST>"});
}
string macros(size_t bytes) { return wrapperWithTag(repeat("[CACHEBUSTING]", bytes)); }
string openMacros(size_t bytes) { return wrapperWithTag(string(bytes, '[')); }
string tagOfSpaces(size_t bytes) { return wrapperWithTag(string(bytes, ' ')); }

// ---- Text in pieces -------------------------------------------------------------------------

string cdataSections(size_t bytes) {
  return inLineWith("<Impression>" + repeat("<![CDATA[u]]>", bytes) + "</Impression>");
}
string textAndComments(size_t bytes) {
  return inLineWith("<Impression>" + repeat("u<!---->", bytes) + "</Impression>");
}
string cdataAndComments(size_t bytes) {
  return inLineWith("<Impression>" + repeat("<![CDATA[u]]><!---->", bytes) + "</Impression>");
}
string instructions(size_t bytes) {
  return inLineWith("<Impression>" + repeat("u<?p?>", bytes) + "</Impression>");
}
string characterReferences(size_t bytes) {
  return inLineWith("<Impression>" + repeat("&#65;", bytes) + "</Impression>");
}
string predefinedEntities(size_t bytes) {
  return inLineWith("<Impression>" + repeat("&amp;", bytes) + "</Impression>");
}
string elementsInText(size_t bytes) {
  return inLineWith("<Impression>" + repeat("u<b/>", bytes) + "</Impression>");
}
string blanks(size_t bytes) { return inLineWith("\n<a/>" + string(bytes, '\n')); }
string blanksThatDiffer(size_t bytes) {
  return inLineWith(series(bytes, [](size_t i) { return "<e/>" + blanksOf(i); }));
}
string longText(size_t bytes) {
  return inLineWith("<Impression>" + string(bytes, 'u') + "</Impression>");
}
string carriageReturns(size_t bytes) { return described(repeat("\r\n", bytes)); }

// ---- What the namespace collapse looks for --------------------------------------------------

string declarationsWithoutSpace(size_t bytes) { return described(repeat("xmlns=", bytes)); }
string declarationsWithSpaces(size_t bytes) { return described(repeat("xmlns= ", bytes)); }
string declarationsOnLines(size_t bytes) { return described(repeat("xmlns=\n", bytes)); }
string declarationsThenOneSpace(size_t bytes) { return described(repeat("xmlns=", bytes) + " "); }
string almostDeclarations(size_t bytes) { return described(repeat("xmln", bytes)); }
string declarationsWithLongS(size_t bytes) { return described(repeat("xmln\xC5\xBF= ", bytes)); }

// ---- Entities and document types ------------------------------------------------------------

string largeEntity() { return "<!ENTITY e \"" + string(100'000, 'e') + "\">"; }
string entityReferred(size_t bytes) { return withDoctype(largeEntity(), repeat("&e;", bytes)); }
string entityReferredInAttribute(size_t bytes) {
  return concat({"<!DOCTYPE VAST [", largeEntity(), "]>",
                 inLineWith("<x a=\"" + repeat("&e;", bytes) + "\"/>")});
}
string smallEntityReferred(size_t bytes) {
  return withDoctype("<!ENTITY e \"text\">", repeat("&e;", bytes));
}
string emptyEntityReferred(size_t bytes) {
  return withDoctype("<!ENTITY e \"\">", repeat("&e;", bytes));
}
string entityOfElements(size_t bytes) {
  return withDoctype("<!ENTITY e \"" + repeat("<a/>", 2'000) + "\">", repeat("&e;", bytes));
}
string nestedEntityDeclarations(size_t levels) {
  string subset = "<!ENTITY e0 \"text\">";
  for (size_t i = 1; i < levels; ++i) {
    const string inner = "&e" + to_string(i - 1) + ";";
    subset += "<!ENTITY e" + to_string(i) + " \"" + repeat(inner, inner.size() * 10) + "\">";
  }
  return subset;
}
string nestedEntities(size_t bytes) {
  return withDoctype(nestedEntityDeclarations(12), "&e11;" + string(bytes, 't'));
}
string nestedEntitiesInAttribute(size_t bytes) {
  return concat({"<!DOCTYPE VAST [", nestedEntityDeclarations(12), "]>",
                 inLineWith("<x a=\"&e11;\"/>" + comment(bytes))});
}
string recursiveEntity(size_t bytes) {
  return withDoctype("<!ENTITY e \"&f;\"><!ENTITY f \"&e;\">", "&e;" + string(bytes, 't'));
}
string parameterEntities(size_t bytes) {
  string subset = "<!ENTITY % p0 \"\">";
  for (size_t i = 1; i < 20; ++i) {
    const string inner = "&#37;p" + to_string(i - 1) + ";";
    subset += "<!ENTITY % p" + to_string(i) + " \"" + repeat(inner, inner.size() * 6) + "\">";
  }
  return withDoctype(subset + "%p19;", string(bytes, 't'));
}
string manyParameterEntities(size_t bytes) {
  return withDoctype(
      series(bytes, [](size_t i) { return "<!ENTITY % p" + to_string(i) + " \"\">"; }));
}
string entityDeclarations(size_t bytes) {
  return withDoctype(
      series(bytes, [](size_t i) { return "<!ENTITY e" + to_string(i) + " \"\">"; }));
}
string externalEntityDeclarations(size_t bytes) {
  return withDoctype(series(
      bytes, [](size_t i) { return "<!ENTITY e" + to_string(i) + " SYSTEM \"file:///e\">"; }));
}
string repeatedEntityDeclaration(size_t bytes) {
  return withDoctype(repeat("<!ENTITY e \"\">", bytes));
}
string unparsedEntityDeclarations(size_t bytes) {
  return withDoctype("<!NOTATION n SYSTEM \"n\">" + series(bytes, [](size_t i) {
                       return "<!ENTITY e" + to_string(i) + " SYSTEM \"e\" NDATA n>";
                     }));
}
string longEntityValue(size_t bytes) {
  return withDoctype("<!ENTITY e \"" + string(bytes, 'e') + "\">");
}
string attributeLists(size_t bytes) {
  return withDoctype(
      series(bytes, [](size_t i) { return "<!ATTLIST x a" + to_string(i) + " CDATA #IMPLIED>"; }));
}
string repeatedAttributeList(size_t bytes) {
  return withDoctype(repeat("<!ATTLIST x a CDATA #IMPLIED>", bytes));
}
string oneAttributeList(size_t bytes) {
  return withDoctype(
      "<!ATTLIST x" +
      series(bytes, [](size_t i) { return " a" + to_string(i) + " CDATA #IMPLIED"; }) + ">");
}
string attributeDefault(size_t bytes) {
  return concat({"<!DOCTYPE VAST [<!ATTLIST x a CDATA \"", string(10'000, 'd'), "\">]>",
                 inLineWith(repeat("<x/>", bytes))});
}
string shortAttributeDefaults(size_t bytes) {
  const string declared = "<!ATTLIST x a CDATA 'd' b CDATA '' c NMTOKENS 'e f'>";
  return concat({"<!DOCTYPE VAST [", declared, "]>", inLineWith(repeat("<x/>", bytes))});
}
string namespaceDefault(size_t bytes) {
  return concat({"<!DOCTYPE VAST [<!ATTLIST x xmlns:p CDATA \"", string(2000, 'u'), "\">]>",
                 inLineWith(repeat("<x/>", bytes))});
}
string identifiers(size_t bytes) {
  const string declared = "<!ATTLIST x i ID #IMPLIED r IDREFS #IMPLIED>";
  return concat({"<!DOCTYPE VAST [", declared, "]>", inLineWith(series(bytes, [](size_t i) {
                   return "<x i=\"n" + to_string(i) + "\" r=\"n1 n2\"/>";
                 }))});
}
string enumerationJustAllowed(size_t bytes) {
  const string declared = "<!ATTLIST x a (v" +
                          series(4000, [](size_t i) { return "|v" + to_string(i); }) +
                          ") #IMPLIED>";
  return concat({"<!DOCTYPE VAST [", declared, "]>", inLineWith(repeat("<x/>", bytes))});
}
string enumeratedAttribute(size_t bytes) {
  return withDoctype("<!ATTLIST x a (v" +
                     series(bytes, [](size_t i) { return "|v" + to_string(i); }) + ") #IMPLIED>");
}
string notationAttribute(size_t bytes) {
  return withDoctype("<!ATTLIST x a NOTATION (v" +
                     series(bytes, [](size_t i) { return "|v" + to_string(i); }) + ") #IMPLIED>");
}
string elementDeclarations(size_t bytes) {
  return withDoctype(
      series(bytes, [](size_t i) { return "<!ELEMENT e" + to_string(i) + " ANY>"; }));
}
string mixedContentModel(size_t bytes) {
  return withDoctype("<!ELEMENT x (#PCDATA" +
                     series(bytes, [](size_t i) { return "|e" + to_string(i); }) + ")*>");
}
string wideContentModel(size_t bytes) {
  return withDoctype("<!ELEMENT x (e" +
                     series(bytes, [](size_t i) { return ",e" + to_string(i); }) + ")>");
}
string deepContentModel(size_t bytes) {
  return withDoctype("<!ELEMENT x " + nested("(", "e", ")", bytes / 2) + ">");
}
string contentModelsJustAllowed(size_t bytes) {
  return withDoctype(series(bytes, [](size_t i) {
    return "<!ELEMENT x" + to_string(i) + " " + nested("(", "e", ")", 120) + ">";
  }));
}
string notations(size_t bytes) {
  return withDoctype(
      series(bytes, [](size_t i) { return "<!NOTATION n" + to_string(i) + " SYSTEM \"n\">"; }));
}
string commentsInDoctype(size_t bytes) { return withDoctype(repeat("<!---->", bytes)); }
string instructionsInDoctype(size_t bytes) { return withDoctype(repeat("<?p?>", bytes)); }
string undeclaredParameterEntities(size_t bytes) { return withDoctype(repeat("%p;", bytes)); }
string longSystemId(size_t bytes) {
  return concat({"<!DOCTYPE VAST SYSTEM \"", string(bytes, 's'), "\">", inLineWith("")});
}

// ---- What stands in an entity, which libxml2 reads with a parser of its own ------------------

string inEntity(string_view content) {
  return withDoctype(concat({"<!ENTITY e \"", content, "\">"}), "&e;");
}
string inEntityOfEntity(string_view content) {
  return withDoctype(
      concat({"<!ENTITY e \"", content, "\"><!ENTITY f \"<x>&e;</x>\"><!ENTITY g \"&f;&f;\">"}),
      "&g;");
}
string entityOfOpenedComments(size_t bytes) { return inEntity(repeat("<!--", bytes)); }
string entityOfHyphens(size_t bytes) { return inEntity("<!--" + repeat("-- ", bytes) + "-->"); }
string entityOfHyphensInEntity(size_t bytes) {
  return inEntityOfEntity("<!--" + repeat("-- ", bytes) + "-->");
}
string entityOfNames(size_t bytes) {
  return inEntity(series(bytes, [](size_t i) { return "<e" + to_string(i) + "/>"; }));
}
string entityOfNamesInEntity(size_t bytes) {
  return inEntityOfEntity(series(bytes, [](size_t i) { return "<e" + to_string(i) + "/>"; }));
}
string entityOfNamespaces(size_t bytes) {
  string open;
  string close;
  for (size_t i = 0; i < 60; ++i) {
    open += "<x";
    for (size_t j = 0; j < 60; ++j) {
      open += " xmlns:n" + to_string(60 * i + j) + "='u'";
    }
    open += ">";
    close += "</x>";
  }
  return inEntity(open + repeat("<n0:e q:a=''/>", bytes) + close);
}
string entityOfAttributes(size_t bytes) {
  return inEntity("<x" + series(bytes, [](size_t i) { return " a" + to_string(i) + "=''"; }) +
                  "/>");
}
string entityOfDepth(size_t bytes) { return inEntity(nested("<e>", "", "</e>", bytes / 7)); }
string entityOfInstructions(size_t bytes) { return inEntity(repeat("u<?p?>", bytes)); }
string entityOfOpenedInstructions(size_t bytes) { return inEntity(repeat("<?p ", bytes)); }
string entityOfEndTags(size_t bytes) { return inEntity(repeat("</x>", bytes)); }
string entityOfLessThan(size_t bytes) { return inEntity(repeat("< ", bytes)); }
string entityOfAmpersands(size_t bytes) { return inEntity(repeat("&#38;", bytes) + ";"); }
string entityOfAmpersandsInAttribute(size_t bytes) {
  return concat({"<!DOCTYPE VAST [<!ENTITY e \"", repeat("&#38;", bytes), ";\">]>",
                 inLineWith("<x a=\"&e;\"/>")});
}
string entityOfUndeclaredPrefixes(size_t bytes) { return inEntity(repeat("<p:a p:b=''/>", bytes)); }
string entityOfBlanks(size_t bytes) {
  return inEntity(series(bytes, [](size_t i) { return "<e/>" + blanksOf(i); }));
}

// ---- Tags behind a document type that hides them ----------------------------------------------

string attributesBehind(string_view subset, size_t bytes) {
  return concat({"<!DOCTYPE VAST [", subset, "]>", attributesOfOneElement(bytes)});
}
string attributesBehindComment(size_t bytes) { return attributesBehind("<!-- ' -->", bytes); }
string attributesBehindCommentWithEnd(size_t bytes) {
  return attributesBehind("<!-- ]> -->", bytes);
}
string attributesBehindInstruction(size_t bytes) { return attributesBehind("<?p \" ?>", bytes); }
string attributesBehindInstructionWithEnd(size_t bytes) {
  return attributesBehind("<?p > ?><?p ' ?>", bytes);
}
string attributesBehindEntity(size_t bytes) {
  return attributesBehind("<!-- ' --><!ENTITY e '\"<!--'>", bytes);
}
string namespacesBehindComment(size_t bytes) {
  return "<!DOCTYPE VAST [<!-- \" -->]>" + namespacesOfOneElement(bytes);
}

// ---- Wrong XML ------------------------------------------------------------------------------

string wrongEarly(size_t bytes) {
  return concat({"<VAST></a><!--", repeat("-- ", bytes), "--></VAST>"});
}
string wrongComment(size_t bytes) { return inLineWith("<!--" + repeat("-- ", bytes) + "-->"); }
string onlyLessThan(size_t bytes) { return string(bytes, '<'); }
string onlyAmpersands(size_t bytes) { return described(string(bytes, '&')); }
string wrongEndTags(size_t bytes) { return described(repeat("</x>", bytes)); }
string attributesWithoutValues(size_t bytes) { return inLineWith("<x" + repeat(" a", bytes)); }
string undeclaredEntities(size_t bytes) { return described(repeat("&u;", bytes)); }
string controlCharacters(size_t bytes) { return described(string(bytes, '\x01')); }
string brokenUtf8(size_t bytes) { return described(string(bytes, '\xFF')); }
string unclosedCdata(size_t bytes) { return described("<![CDATA[" + string(bytes, ']')); }
string unclosedInstruction(size_t bytes) { return described("<?p " + repeat("? ", bytes)); }
string unclosedAttribute(size_t bytes) { return inLineWith("<x a=\"" + string(bytes, 'a')); }
string wrongAtTheEnd(size_t bytes) {
  return concat({kStart, repeat("<Impression>u</Impression>", bytes)});
}

// ---- Names, depth, JSON, numbers ------------------------------------------------------------

string distinctElementNames(size_t bytes) {
  return inLineWith(series(bytes, [](size_t i) { return "<e" + to_string(i) + "/>"; }));
}
string distinctAttributeNames(size_t bytes) {
  return inLineWith(series(bytes, [](size_t i) { return "<e" + attributes(i * 8, 8) + "/>"; }));
}
string longName(size_t bytes) { return inLineWith("<" + string(bytes, 'n') + "/>"); }
string prefixesOfLongName(size_t bytes) {
  string element = "<" + string(40'000, 'n');
  for (size_t i = 0; i < 790; ++i) {
    element += " p:a" + to_string(i) + "=\"\"";
  }
  return inLineWith(repeat(element + "/>", bytes));
}
string typesOfLongName(size_t bytes) {
  const string element = "<" + string(40'000, 'n') + attributes(0, 790) + "/>";
  return concat({"<!DOCTYPE VAST [<!ATTLIST x a NMTOKENS #IMPLIED b ID #IMPLIED>]>",
                 inLineWith(repeat(element, bytes))});
}
// VAST, Ad and InLine, a chain down, and many elements at the depth given.
string depthOf(size_t depth, size_t bytes) {
  return inLineWith(nested("<e>", repeat("<e/>", bytes), "</e>", depth - 4));
}
string depth256(size_t bytes) { return depthOf(256, bytes); }
string depth257(size_t bytes) { return depthOf(257, bytes); }
string depth258(size_t bytes) { return depthOf(258, bytes); }
string deepChains(size_t bytes) {
  return inLineWith(repeat(nested("<e>", "", "</e>", 250), bytes));
}
string depthUnbounded(size_t bytes) { return inLineWith(nested("<e>", "", "</e>", bytes / 7)); }

string withExtraActions(string_view json) {
  return vendorWith(concat({"<ExtraActions>", json, "</ExtraActions>"}));
}
string json512(size_t bytes) {
  return withExtraActions("[" + nested("[", "", "]", 511) +
                          repeat("," + nested("[", "", "]", 511), bytes) + "]");
}
string json513(size_t bytes) {
  return withExtraActions("[" + nested("[", "", "]", 512) +
                          repeat("," + nested("[", "", "]", 512), bytes) + "]");
}
string jsonUnbounded(size_t bytes) { return withExtraActions(nested("[", "", "]", bytes / 2)); }
string jsonOnlyOpened(size_t bytes) { return withExtraActions(string(bytes, '[')); }
string jsonWide(size_t bytes) { return withExtraActions("[0" + repeat(",0", bytes) + "]"); }
string jsonKeys(size_t bytes) {
  return withExtraActions(
      "{\"k\":0" + series(bytes, [](size_t i) { return ",\"k" + to_string(i) + "\":0"; }) + "}");
}
string jsonOneKey(size_t bytes) {
  return withExtraActions("{\"k\":0" + repeat(",\"k\":0", bytes) + "}");
}
string jsonNumber(size_t bytes) { return withExtraActions("[" + string(bytes, '9') + "]"); }
string jsonString(size_t bytes) {
  return withExtraActions("[\"" + repeat("\\u0041", bytes) + "\"]");
}

string digitsOfBid(size_t bytes) { return vendorWith("<vc>" + string(bytes, '9') + "</vc>"); }
string fractionOfBid(size_t bytes) { return vendorWith("<vc>0." + string(bytes, '1') + "</vc>"); }
string exponentOfBid(size_t bytes) { return vendorWith("<vc>1e" + string(bytes, '9') + "</vc>"); }
string spacesBeforeBid(size_t bytes) { return vendorWith("<vc>" + string(bytes, ' ') + "1</vc>"); }
string digitsOfRatio(size_t bytes) {
  return vendorWith("<AdOverlay><AdOverlayDimensionRatio>" + string(bytes, '9') +
                    "</AdOverlayDimensionRatio></AdOverlay>");
}
string digitsOfAction(size_t bytes) {
  return vendorWith("<ViewabilityAction>" + string(bytes, '9') + "</ViewabilityAction>");
}
string zerosOfFlag(size_t bytes) {
  return vendorWith("<CoppaEnabled>" + string(bytes, '0') + "1</CoppaEnabled>");
}
string digitsOfDuration(size_t bytes) {
  return linearWith("<Duration>" + string(bytes, '9') + ":00:00</Duration>");
}
string colonsOfDuration(size_t bytes) {
  return linearWith("<Duration>" + string(bytes, ':') + "</Duration>");
}
string colonsOfOffset(size_t bytes) {
  return linearWith("<TrackingEvents><Tracking event=\"progress\" offset=\"" + string(bytes, ':') +
                    "\">u</Tracking></TrackingEvents>");
}
string percentOfOffset(size_t bytes) {
  return linearWith("<TrackingEvents><Tracking event=\"progress\" offset=\"" + string(bytes, '9') +
                    "%\">u</Tracking></TrackingEvents>");
}
string digitsOfExpires(size_t bytes) {
  return inLineWith("<Expires>" + string(bytes, '9') + "</Expires>");
}
string digitsOfVersion(size_t bytes) {
  return concat({"<VAST version=\"4", string(bytes, '0'), "\"/>"});
}

#define SHAPE(name, make, errorCode) \
  HostileShape { name, make, errorCode }

constexpr std::array kShapes{
    SHAPE("attributes: all of one element", attributesOfOneElement, 101),
    SHAPE("attributes: 790 an element", attributesJustAllowed, 0),
    SHAPE("attributes: 700 with a prefix an element", attributesWithPrefixes, 0),
    SHAPE("attributes: one long", longAttribute, 0),
    SHAPE("attributes: one of references", attributeOfReferences, 0),
    SHAPE("attributes: behind a comment", attributesBehindComment, 101),
    SHAPE("attributes: behind a comment with ]>", attributesBehindCommentWithEnd, 101),
    SHAPE("attributes: behind an instruction", attributesBehindInstruction, 101),
    SHAPE("attributes: behind an instruction with >", attributesBehindInstructionWithEnd, 101),
    SHAPE("attributes: behind an entity", attributesBehindEntity, 101),
    SHAPE("namespaces: behind a comment", namespacesBehindComment, 101),
    SHAPE("namespaces: all on one element", namespacesOfOneElement, 101),
    SHAPE("namespaces: 250 in scope", namespacesInScope, 0),
    SHAPE("namespaces: 240 on every element", namespacesOnEveryElement, 0),
    SHAPE("namespaces: undeclared prefix", namespacesUndeclared, 0),
    SHAPE("icons: distinct programs", iconsWithDistinctPrograms, 0),
    SHAPE("icons: one program", iconsWithOneProgram, 0),
    SHAPE("tracking: distinct events", distinctEventNames, 0),
    SHAPE("tracking: one event", oneEventName, 0),
    SHAPE("tracking: the last without an event", lastEventNameless, 100),
    SHAPE("tracking: extra events", extraEvents, 0),
    SHAPE("many: Linear", linears, 0),
    SHAPE("many: Creatives", creatives, 0),
    SHAPE("many: Companion", companions, 0),
    SHAPE("many: events of a Companion", companionEvents, 0),
    SHAPE("many: Verification", verifications, 0),
    SHAPE("many: Verification of the ad", verificationsOfAd, 0),
    SHAPE("many: AdVerifications with markup", moatMarkup, 0),
    SHAPE("many: Verification with markup", moatMarkupInOneBlock, 0),
    SHAPE("many: ViewableImpression", viewableImpressions, 0),
    SHAPE("many: Impression", impressions, 0),
    SHAPE("many: MediaFile", mediaFiles, 0),
    SHAPE("many: Category", categories, 0),
    SHAPE("many: Extension", extensions, 0),
    SHAPE("many: vendor blocks", vendorBlocks, 0),
    SHAPE("many: vendor blocks of one setting", vendorBlocksOfOneSetting, 0),
    SHAPE("many: vendor blocks in one Extension", vendorBlocksInOneExtension, 0),
    SHAPE("many: vendor children", vendorChildren, 101),
    SHAPE("many: vendor children of one name", vendorChildrenOfOneName, 0),
    SHAPE("many: vendor blocks with web settings", vendorSettings, 0),
    SHAPE("many: Card", cards, 0),
    SHAPE("many: Hotspot", hotspots, 0),
    SHAPE("many: Ad", ads, 405),
    SHAPE("many: Wrapper", wrappers, 100),
    SHAPE("tag: macros", macros, 301),
    SHAPE("tag: opened macros", openMacros, 301),
    SHAPE("tag: spaces", tagOfSpaces, 301),
    SHAPE("text: CDATA sections", cdataSections, 0),
    SHAPE("text: comments", textAndComments, 0),
    SHAPE("text: CDATA sections and comments", cdataAndComments, 0),
    SHAPE("text: instructions", instructions, 0),
    SHAPE("text: character references", characterReferences, 0),
    SHAPE("text: predefined entities", predefinedEntities, 0),
    SHAPE("text: elements", elementsInText, 0),
    SHAPE("text: blanks", blanks, 0),
    SHAPE("text: blanks that differ", blanksThatDiffer, 0),
    SHAPE("text: one long", longText, 0),
    SHAPE("text: line ends", carriageReturns, 0),
    SHAPE("xmlns=: without white space", declarationsWithoutSpace, 0),
    SHAPE("xmlns=: with spaces, one line", declarationsWithSpaces, 0),
    SHAPE("xmlns=: with line breaks", declarationsOnLines, 0),
    SHAPE("xmlns=: one space at the end", declarationsThenOneSpace, 0),
    SHAPE("xmlns=: almost", almostDeclarations, 0),
    SHAPE("xmlns=: with long s", declarationsWithLongS, 0),
    SHAPE("entity: 100 KB, referred to", entityReferred, 101),
    SHAPE("entity: 100 KB, in an attribute", entityReferredInAttribute, 101),
    SHAPE("entity: small, referred to", smallEntityReferred, 0),
    SHAPE("entity: empty, referred to", emptyEntityReferred, 0),
    SHAPE("entity: of elements", entityOfElements, 101),
    SHAPE("entity: of opened comments", entityOfOpenedComments, 101),
    SHAPE("entity: of hyphens", entityOfHyphens, 101),
    SHAPE("entity: of hyphens, in an entity", entityOfHyphensInEntity, 101),
    SHAPE("entity: of names", entityOfNames, 101),
    SHAPE("entity: of names, in an entity", entityOfNamesInEntity, 101),
    SHAPE("entity: of namespaces", entityOfNamespaces, 101),
    SHAPE("entity: of attributes", entityOfAttributes, 101),
    SHAPE("entity: of depth", entityOfDepth, 101),
    SHAPE("entity: of instructions", entityOfInstructions, 0),
    SHAPE("entity: of opened instructions", entityOfOpenedInstructions, 101),
    SHAPE("entity: of end tags", entityOfEndTags, 101),
    SHAPE("entity: of <", entityOfLessThan, 101),
    SHAPE("entity: of ampersands", entityOfAmpersands, 101),
    SHAPE("entity: of ampersands, in an attribute", entityOfAmpersandsInAttribute, 101),
    SHAPE("entity: of undeclared prefixes", entityOfUndeclaredPrefixes, 0),
    SHAPE("entity: of blanks that differ", entityOfBlanks, 0),
    SHAPE("entity: nested", nestedEntities, 101),
    SHAPE("entity: nested, in an attribute", nestedEntitiesInAttribute, 101),
    SHAPE("entity: recursive", recursiveEntity, 101),
    SHAPE("doctype: nested parameter entities", parameterEntities, 101),
    SHAPE("doctype: parameter entities", manyParameterEntities, 101),
    SHAPE("doctype: undeclared parameter entities", undeclaredParameterEntities, 101),
    SHAPE("doctype: entities", entityDeclarations, 101),
    SHAPE("doctype: external entities", externalEntityDeclarations, 101),
    SHAPE("doctype: one entity repeated", repeatedEntityDeclaration, 101),
    SHAPE("doctype: unparsed entities", unparsedEntityDeclarations, 101),
    SHAPE("doctype: one long entity", longEntityValue, 0),
    SHAPE("doctype: attribute lists", attributeLists, 101),
    SHAPE("doctype: one attribute list repeated", repeatedAttributeList, 101),
    SHAPE("doctype: one long attribute list", oneAttributeList, 101),
    SHAPE("doctype: attribute default", attributeDefault, 101),
    SHAPE("doctype: short attribute defaults", shortAttributeDefaults, 101),
    SHAPE("doctype: namespace default", namespaceDefault, 101),
    SHAPE("doctype: identifiers", identifiers, 101),
    SHAPE("doctype: enumeration just allowed", enumerationJustAllowed, 0),
    SHAPE("doctype: enumerated attribute", enumeratedAttribute, 101),
    SHAPE("doctype: notation attribute", notationAttribute, 101),
    SHAPE("doctype: elements", elementDeclarations, 101),
    SHAPE("doctype: mixed content model", mixedContentModel, 101),
    SHAPE("doctype: wide content model", wideContentModel, 101),
    SHAPE("doctype: deep content model", deepContentModel, 101),
    SHAPE("doctype: content models 120 deep", contentModelsJustAllowed, 101),
    SHAPE("doctype: notations", notations, 101),
    SHAPE("doctype: comments", commentsInDoctype, 0),
    SHAPE("doctype: instructions", instructionsInDoctype, 0),
    SHAPE("doctype: long system id", longSystemId, 101),
    SHAPE("wrong: early, then a comment of --", wrongEarly, 101),
    SHAPE("wrong: a comment of --", wrongComment, 101),
    SHAPE("wrong: only <", onlyLessThan, 101),
    SHAPE("wrong: ampersands", onlyAmpersands, 101),
    SHAPE("wrong: end tags", wrongEndTags, 101),
    SHAPE("wrong: attributes without values", attributesWithoutValues, 101),
    SHAPE("wrong: undeclared entities", undeclaredEntities, 101),
    SHAPE("wrong: control characters", controlCharacters, 101),
    SHAPE("wrong: bytes that are not UTF-8", brokenUtf8, 101),
    SHAPE("wrong: unclosed CDATA", unclosedCdata, 101),
    SHAPE("wrong: unclosed instruction", unclosedInstruction, 101),
    SHAPE("wrong: unclosed attribute", unclosedAttribute, 101),
    SHAPE("wrong: at the end", wrongAtTheEnd, 101),
    SHAPE("names: distinct elements", distinctElementNames, 101),
    SHAPE("names: distinct attributes", distinctAttributeNames, 101),
    SHAPE("names: one long", longName, 101),
    SHAPE("names: long, with undeclared prefixes", prefixesOfLongName, 101),
    SHAPE("names: long, with types of attributes", typesOfLongName, 101),
    SHAPE("depth: 256", depth256, 0),
    SHAPE("depth: 257", depth257, 0),
    SHAPE("depth: 258", depth258, 101),
    SHAPE("depth: 253, again and again", deepChains, 0),
    SHAPE("depth: unbounded", depthUnbounded, 101),
    SHAPE("json: 512 deep", json512, 0),
    SHAPE("json: 513 deep", json513, 0),
    SHAPE("json: unbounded depth", jsonUnbounded, 0),
    SHAPE("json: only opened", jsonOnlyOpened, 0),
    SHAPE("json: wide", jsonWide, 0),
    SHAPE("json: distinct keys", jsonKeys, 0),
    SHAPE("json: one key", jsonOneKey, 0),
    SHAPE("json: one number", jsonNumber, 0),
    SHAPE("json: one string of escapes", jsonString, 0),
    SHAPE("number: digits of vc", digitsOfBid, 0),
    SHAPE("number: fraction of vc", fractionOfBid, 0),
    SHAPE("number: exponent of vc", exponentOfBid, 0),
    SHAPE("number: spaces before vc", spacesBeforeBid, 0),
    SHAPE("number: AdOverlayDimensionRatio", digitsOfRatio, 0),
    SHAPE("number: ViewabilityAction", digitsOfAction, 0),
    SHAPE("number: zeros of CoppaEnabled", zerosOfFlag, 0),
    SHAPE("number: digits of Duration", digitsOfDuration, 0),
    SHAPE("number: colons of Duration", colonsOfDuration, 0),
    SHAPE("number: colons of an offset", colonsOfOffset, 0),
    SHAPE("number: percentage of an offset", percentOfOffset, 0),
    SHAPE("number: Expires", digitsOfExpires, 0),
    SHAPE("number: version", digitsOfVersion, 102),
};

#undef SHAPE

}  // namespace

std::span<const HostileShape> hostileShapes() noexcept { return kShapes; }

std::string endlessHttpHeaders(std::size_t bytes) {
  return "HTTP/1.1 200 OK\r\n" +
         series(bytes, [](size_t i) { return "X-Header-" + to_string(i) + ": value\r\n"; }) +
         "Content-Length: 0\r\n\r\n";
}

std::string endlessChunkTrailers(std::size_t bytes) {
  return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n" +
         series(bytes, [](size_t i) { return "X-Trailer-" + to_string(i) + ": value\r\n"; }) +
         "\r\n";
}

}  // namespace tamzo::bench

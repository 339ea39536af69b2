// Lists the links of a file as another program reads it: FILE. A line for each link: page, rectangle, and "uri" with the address, or
// "to" with the target's page and its view. Numbers are rounded to hundredths of a point.
var doc = new PDFDocument(scriptArgs[0]);

function number(obj) { return obj && obj.isNumber() ? (Math.round(obj.asNumber() * 100) / 100).toString() : "null"; }

function numbers(array, from) {
  var list = [];
  for (var i = from; i < array.length; ++i) {
    var element = array[i];  // undefined where the array has null
    list.push(element && element.isName() ? element.asName() : number(element));
  }
  return list.join(" ");
}

var pageOfObject = {};
for (var i = 0, n = doc.countPages(); i < n; ++i) pageOfObject[doc.findPage(i).asIndirect()] = i + 1;

var names = {};
function takeNames(node) {
  var kids = node.get("Kids"), pairs = node.get("Names");
  if (kids && kids.isArray()) for (var i = 0; i < kids.length; ++i) takeNames(kids[i]);
  if (pairs && pairs.isArray()) for (var i = 0; i + 1 < pairs.length; i += 2) names[pairs[i].asString()] = pairs[i + 1];
}
var tree = doc.getTrailer().get("Root").get("Names");
if (tree && tree.isDictionary()) takeNames(tree.get("Dests"));

function destination(value) {
  if (value.isString()) value = names[value.asString()];
  if (value && value.isDictionary()) value = value.get("D");
  if (!value || !value.isArray()) return "nowhere";
  return (pageOfObject[value[0].asIndirect()] || 0) + " " + numbers(value, 1);
}

function target(link) {
  var action = link.get("A");
  if (!action || !action.isDictionary()) return "to " + destination(link.get("Dest"));
  var kind = action.get("S").asName();
  if (kind === "URI") return "uri " + action.get("URI").asString();
  return kind === "GoTo" ? "to " + destination(action.get("D")) : kind;
}

for (var i = 0, n = doc.countPages(); i < n; ++i) {
  var annots = doc.findPage(i).get("Annots");
  if (!annots || !annots.isArray()) continue;
  for (var k = 0; k < annots.length; ++k)
    if (annots[k].get("Subtype").asName() === "Link")
      print(i + 1, numbers(annots[k].get("Rect"), 0), target(annots[k]));
}

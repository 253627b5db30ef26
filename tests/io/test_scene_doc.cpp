// Scene documents: read into place, written back byte for byte, bad input
// refused with where and what was expected.
#include <gtest/gtest.h>

#include <string>

#include "io/SceneDoc.h"
#include "support/JsonReader.h"
#include "support/JsonWriter.h"

using namespace kxscene;

namespace {

// Every field of the format, laid out exactly as the writer lays it out.
const char* const kFullScene = R"({
  "format": "kxscene",
  "version": 1,
  "view": {
    "camera": {"location":[10,-20,30.5],"forward":[0,0.6,-0.8],"up":[0,0.8,0.6]},
    "range": 42.25,
    "renderMode": 4,
    "background": [40,60,80,255]
  },
  "objects": [
    {
      "externId": 4294967295,
      "xdata": "墙 W-1 \"main\"",
      "visible": false,
      "renderMode": 0,
      "generateShadow": true,
      "faceSnap": true,
      "maxUnitsPerPixel": 0.25,
      "snapPoints": [[0,0,0],[6,0,0]],
      "shapes": [
        {"kind":"pgon","color":[225,205,160,255],"normal":[0,-1,0],"pts":[[0,0,0],[6,0,0],[6,0,3],[0,0,3],[0,0,0]],"holes":[[[2,0,0.75],[2,0,2.25],[4,0,2.25],[4,0,0.75],[2,0,0.75]]],"border":{"show":true,"color":[0,0,0,255],"width":2.5,"scaled":true,"max":6},"texture":"brick.png","offsets":{"factorScale":2,"unitScale":0.5,"zOffset":0.125},"tags":{"nodepth":"0.1","坡屋顶":"外面"},"hitLines":[[[0,0,0],[6,0,0]]]},
        {"kind":"pline","color":[40,40,45,255],"normal":[0,0,1],"visible":false,"pts":[[0,0,0],[1,1,1]],"dotLine":true},
        {"kind":"face","color":[170,210,255,128],"normal":[0,-1,0],"vertices":[[2,0,0.75],[4,0,0.75],[4,0,2.25],[2,0,2.25]],"triangles":[0,1,2,0,2,3],"normals":[[0,-1,0],[0,-1,0],[0,-1,0],[0,-1,0]],"texCoords":[[0,0],[1,0],[1,1],[0,1]]},
        {"kind":"text","color":[255,255,255,255],"normal":[0,0,1],"text":"房间1-1","font":"simsun","height":0.6,"position":[1.5,1.5,1.5],"dir1":[1,0,0],"dir2":[0,1,0]}
      ],
      "lod": [
        {
          "unitsPerPixel": 0.05,
          "shapes": [
            {"kind":"pline","color":[255,255,255,255],"normal":[0,0,1],"pts":[[0,0,0],[6,0,0]]}
          ]
        }
      ]
    },
    {
      "externId": 7,
      "shapes": [
        {"kind":"pgon","color":[1,2,3,4],"normal":[0,0,1],"pts":[[0.1,0.2,0.30000000000000004],[1e-300,5e-324,-0],[1.7976931348623157e+308,1,2]]}
      ]
    }
  ],
  "staticObjects": [
    {
      "visible": false,
      "primitives": [
        {"type":"lineLoop","points":[[0,0,0],[1,0,0],[1,1,0]],"colors":[[255,0,0]]},
        {"type":"triangleFan","points":[[0,0,0],[1,0,0],[1,1,0]],"normals":[[0,0,1]],"colors":[[1,2,3],[4,5,6],[7,8,9]],"texCoords":[[0,0],[1,0],[1,1]]}
      ]
    }
  ]
}
)";

bool parse(const std::string& text, SceneDoc& doc, std::string& error) {
  JsonReader r(text.data(), text.size());
  return parseSceneDoc(r, "house.json", doc, error);
}

std::string write(const SceneDoc& doc) {
  std::string out, error;
  JsonWriter w(&out);
  EXPECT_TRUE(writeSceneDoc(w, doc, error)) << error;
  EXPECT_TRUE(w.finish()) << w.error();
  return out;
}

// The error for a document, without its position.
std::string errorOf(const std::string& text) {
  SceneDoc doc;
  std::string error;
  if (parse(text, doc, error)) return "(accepted)";
  const size_t at = error.rfind(" (line ");
  return at == std::string::npos ? error : error.substr(0, at);
}

// A valid one-object document with `shape` as its only shape.
std::string withShape(const std::string& shape) {
  return R"({"format":"kxscene","version":1,"objects":[{"shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}]},)"
         R"({"externId":5,"shapes":[)" +
         shape + "]}]}";
}

std::string withObject(const std::string& object) {
  return R"({"format":"kxscene","version":1,"objects":[)" + object + "]}";
}

std::string withView(const std::string& view) { return R"({"format":"kxscene","version":1,"view":)" + view + "}"; }

const char* const kGoodView =
    R"({"camera":{"location":[0,0,0],"forward":[0,0,-1],"up":[0,1,0]},"range":10,"renderMode":2,"background":[0,0,0,255]})";

}  // namespace

TEST(SceneDoc, ReadsEveryFieldIntoItsPlace) {
  // The round trip cannot see two members swapped; these can.
  SceneDoc doc;
  std::string error;
  ASSERT_TRUE(parse(kFullScene, doc, error)) << error;
  ASSERT_TRUE(doc.hasView);
  const ViewDoc& v = doc.view;
  EXPECT_EQ(std::vector<double>({v.location.y, v.forward.z, v.up.y, v.range}),
            std::vector<double>({-20, -0.8, 0.8, 42.25}));
  EXPECT_EQ(v.renderMode, 4);
  EXPECT_EQ(v.background, CColor(40, 60, 80, 255));
  ASSERT_EQ(doc.objects.size(), 2u);
  const ObjectDoc& o = doc.objects[0];
  EXPECT_EQ(o.externId, 4294967295u);
  EXPECT_EQ(o.xdata, "\xE5\xA2\x99 W-1 \"main\"");
  EXPECT_EQ(std::vector<bool>({o.visible, o.generateShadow, o.faceSnap, o.hasMaxUnitsPerPixel}),
            std::vector<bool>({false, true, true, true}));
  EXPECT_EQ(o.renderMode, 0);
  EXPECT_EQ(o.maxUnitsPerPixel, 0.25);
  ASSERT_EQ(o.shapes.size(), 4u);
  const ShapeDoc &wall = o.shapes[0], &line = o.shapes[1], &glass = o.shapes[2], &label = o.shapes[3];
  EXPECT_EQ(std::vector<int>({wall.kind, line.kind, glass.kind, label.kind}),
            std::vector<int>({CRenderShape::kPgon, CRenderShape::kPline, CRenderShape::kFace, CRenderShape::kText}));
  EXPECT_TRUE(wall.showBorder && wall.borderScaled && !line.showBorder && !line.visible && line.dotLine);
  EXPECT_EQ(std::vector<float>({wall.borderWidth, wall.borderMax, wall.zOffset, line.borderWidth}),
            std::vector<float>({2.5f, 6.0f, 0.125f, 1.2f}));
  EXPECT_EQ(std::vector<double>({wall.factorScale, wall.unitScale}), std::vector<double>({2.0, 0.5}));
  EXPECT_EQ(wall.texture, "brick.png");
  EXPECT_EQ(wall.tags.at("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6"), "\xE5\xA4\x96\xE9\x9D\xA2");
  EXPECT_EQ(label.font, "simsun");
  EXPECT_EQ(std::vector<double>({label.height, label.position.z}), std::vector<double>({0.6, 1.5}));
  EXPECT_EQ(o.lods.at(0).unitsPerPixel, 0.05f);
  ASSERT_EQ(doc.statics.size(), 1u);
  EXPECT_FALSE(doc.statics[0].visible);
  EXPECT_EQ(doc.statics[0].primitives.at(1).type, CRenderSystem::kTriangleFan);
}

TEST(SceneDoc, WritesWhatItReadByteForByteAndLeavesDefaultsOut) {
  // Byte for byte: the extreme numbers of the second object (0.1 + 0.2, the smallest denormal, -0, the largest
  // double) came through the reader exact, as shortest round-trip text names one double only.
  SceneDoc doc;
  std::string error;
  ASSERT_TRUE(parse(kFullScene, doc, error)) << error;
  EXPECT_EQ(write(doc), kFullScene);
  SceneDoc small;
  ASSERT_TRUE(parse(withShape(R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]]})"), small, error)) << error;
  const std::string text = write(small);
  EXPECT_NE(text.find(R"({"kind":"pgon","color":[255,255,255,255],"normal":[0,0,1],"pts":[[0,0,0],[1,0,0],[0,1,0]]})"),
            std::string::npos)
      << text;
}

TEST(SceneDoc, ErrorsNameTheFileTheObjectTheFieldAndTheExpectation) {
  struct Case {
    std::string doc;
    const char* message;
  };
  const std::string pgon = R"({"kind":"pgon","pts":[[0,0,0],[1,0,0],[0,1,0]])";
  const std::string face = R"({"kind":"face","vertices":[[0,0,0],[1,0,0],[0,1,0]],)";
  const std::string statics = R"({"format":"kxscene","version":1,"staticObjects":[{"primitives":[)";
  const std::string view = kGoodView;
  auto viewWith = [&view](const std::string& from, const std::string& to) {
    return withView(std::string(view).replace(view.find(from), from.size(), to));
  };
  const std::string shape = "object 1: shape 0: ";
  const Case cases[] = {
      // The header and the document as a whole.
      {R"({"version":1,"format":"kxscene"})",
       "expected the document to start with \"format\": \"kxscene\", \"version\": 1"},
      {R"({"format":"kxmodel","version":1})", "field \"format\": expected \"kxscene\" but found \"kxmodel\""},
      {R"({"format":"kxscene","version":2})",
       "field \"version\": version 2 is newer than this reader, which reads version 1"},
      {R"([1,2])", "expected a scene document (a JSON object)"},
      {R"({"format":"kxscene","version":1,"extra":0})", "unknown field \"extra\""},
      {R"({"format":"kxscene","version":1} {})", "unexpected '{' after the end of the document"},
      {R"({"format":"kxscene","version":1,"objects":{}})", "field \"objects\": expected an array of objects"},
      // The view.
      {viewWith("10", "1e16"), "field \"view.range\": expected a range from 1e-06 to 1e+15"},
      {viewWith("[0,1,0]", "[0,0,2]"), "field \"view.camera\": the up and forward directions are parallel"},
      {viewWith(",\"renderMode\":2", ""), "field \"view\": missing field \"renderMode\""},
      // Objects and their levels.
      {withObject(R"({"externId":3})"), "object 0: missing field \"shapes\""},
      {withObject(R"({"shapes":[]})"), "object 0: field \"shapes\": an object needs at least one shape"},
      {withObject(R"({"externId":1.5,"shapes":[]})"),
       "object 0: field \"externId\": expected an integer from 0 to 4294967295 but found 1.5"},
      {withObject(R"({"shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}],"lod":[{"shapes":[]}]})"),
       "object 0: level 0: missing field \"unitsPerPixel\""},
      {withObject(
           R"({"shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}],"lod":[{"unitsPerPixel":1,"shapes":[{"kind":"pgon"}]}]})"),
       "object 0: level 0: shape 0: missing field \"pts\""},
      // Shapes: types, ranges, counts, fields of other kinds.
      {withShape(R"({"kind":"pgon","pts":"none"})"), "field \"pts\": expected an array of 3-number points"},
      {withShape(R"({"kind":"pgon","pts":[[0,0,0],[1,0],[0,1,0]]})"),
       "field \"pts\": point 1: expected a point of 3 numbers [x, y, z] but found 2 numbers"},
      {withShape(R"({"kind":"circle","pts":[[0,0,0]]})"),
       "field \"kind\": unknown shape kind \"circle\" (expected pline, pgon, text or face)"},
      {withShape(R"({"pts":[[0,0,0],[1,0,0]]})"), "missing field \"kind\""},
      {withShape(R"({"kind":"pgon","pts":[[1e400,0,0],[1,0,0],[0,1,0]]})"),
       "field \"pts\": point 0: number 1e400 is out of range"},
      {withShape(pgon + R"(,"border":{"width":"2"}})"), "field \"border.width\": expected a number"},
      {withShape(pgon + R"(,"border":{"width":1e39}})"),
       "field \"border.width\": number 1e39 is out of range for a single-precision value"},
      {withShape(R"({"kind":"pgon","pts":[[0,0,0],[1,0,0]]})"), "field \"pts\": a pgon needs at least 3 points"},
      {withShape(R"({"kind":"pline","pts":[[0,0,0]]})"), "field \"pts\": a pline needs at least 2 points"},
      {withShape(pgon + R"(,"holes":[[[0,0,0],[1,0,0]]]})"), "field \"holes\": hole 0: a hole needs at least 3 points"},
      {withShape(R"({"kind":"pline","pts":[[0,0,0],[1,0,0]],"holes":[]})"),
       "field \"holes\" does not belong to a pline shape"},
      {withShape(pgon + R"(,"normal":[0,0,0]})"), "field \"normal\": expected a direction of non-zero length"},
      {withShape(pgon + R"(,"color":[0,0,256,0]})"),
       "field \"color\": expected a colour [red, green, blue, alpha] of integers 0 to 255 but found 256"},
      {withShape(pgon + R"(,"color":[0,0,0]})"),
       "field \"color\": expected a colour [red, green, blue, alpha] of integers 0 to 255"},
      {withShape(pgon + R"(,"tags":{"kxscene.texture":"a.png"}})"),
       "field \"tags.kxscene.texture\": the tag key is reserved for the texture file name"},
      {withShape(pgon + R"(,"tags":{"a":1}})"), "field \"tags.a\": expected a string"},
      {withShape(pgon + R"(,"texture":""})"), "field \"texture\": expected a texture file name"},
      {withShape(pgon + R"(,"pts":[]})"), "field \"pts\" given twice"},
      {withShape(pgon + R"(,"colour":[0,0,0,0]})"), "unknown field \"colour\""},
      {withShape(pgon + R"(,"hitLines":[[[0,0,0]]]})"),
       "field \"hitLines\": line 0: expected at least 2 points but found 1"},
      {withShape(face + R"("triangles":[0,1,3]})"),
       "field \"triangles\": index 3 at position 2 is past the last of 3 vertices"},
      {withShape(face + R"("triangles":[0,1]})"),
       "field \"triangles\": expected three vertex indices per triangle, at least one triangle"},
      {withShape(face + R"("triangles":[0,-1,2]})"),
       "field \"triangles\": expected an integer from 0 to 2147483647 but found -1"},
      {withShape(face + R"("triangles":[0,1,2],"normals":[[0,0,1]]})"),
       "field \"normals\": expected one normal per vertex (3)"},
      {withShape(face + R"("triangles":[0,1,2],"texCoords":[[0,0],[1,0]]})"),
       "field \"texCoords\": expected one pair per vertex (3)"},
      {withShape(R"({"kind":"text","text":"a","height":0,"position":[0,0,0]})"),
       "field \"height\": expected a text height above 0"},
      {withShape(R"({"kind":"text","height":1,"position":[0,0,0]})"), "missing field \"text\""},
      // Static objects.
      {statics + R"({"type":"quads","points":[[0,0,0]]}]}]})",
       "static object 0: primitive 0: field \"type\": unknown primitive \"quads\" (expected points, lines, lineStrip, "
       "lineLoop, triangles, triangleStrip or triangleFan)"},
      {statics + R"({"type":"lines","points":[[0,0,0],[1,0,0],[2,0,0]],"colors":[[0,0,0],[1,1,1]]}]}]})",
       "static object 0: primitive 0: field \"colors\": expected none, one, or one per point"},
      {statics + R"({"type":"lines","points":[[0,0,0]],"colors":[[0,0,0,0]]}]}]})",
       "static object 0: primitive 0: field \"colors\": colour 0: expected a colour [red, green, blue] of integers 0 "
       "to 255"},
      {statics + R"({"type":"lines"}]}]})", "static object 0: primitive 0: missing field \"points\""},
  };
  EXPECT_EQ(errorOf(withView(kGoodView)), "(accepted)");
  for (const Case& c : cases) {
    // Shape errors are all in the second object's only shape.
    const bool inShape = c.doc.find(R"({"externId":5,"shapes":[)") != std::string::npos;
    EXPECT_EQ(errorOf(c.doc), "house.json: " + (inShape ? shape : std::string()) + c.message) << c.doc;
  }
}

TEST(SceneDoc, ErrorPositionIsTheOffendingValueAndEveryTruncationHasOne) {
  SceneDoc doc;
  std::string error;
  ASSERT_FALSE(parse("{\"format\": \"kxscene\", \"version\": 1,\n\"objects\": [\n  {\"shapes\": 12}\n]}", doc, error));
  EXPECT_EQ(error, "house.json: object 0: field \"shapes\": expected an array of shapes (line 3, column 14)");
  // Every proper prefix of a valid file is refused, whatever it cuts.
  const std::string full = kFullScene;
  const std::string trimmed = full.substr(0, full.find_last_not_of("\n") + 1);
  for (size_t n = 0; n < trimmed.size(); ++n) {
    ASSERT_FALSE(parse(trimmed.substr(0, n), doc, error)) << "prefix of " << n << " bytes accepted";
    ASSERT_EQ(error.rfind("house.json: ", 0), 0u) << error;
    ASSERT_NE(error.find(" (line "), std::string::npos) << error;
  }
  EXPECT_EQ(errorOf(trimmed.substr(0, trimmed.find("\"pts\":[[0,0,0],[6") + 17)),
            "house.json: object 0: shape 0: field \"pts\": point 1: expected ',' or ']' but found the end of the file");
}

TEST(SceneDoc, DamagedDocumentsAreRefusedOrReadWhole) {
  // Bytes changed, dropped or doubled: a located refusal, or a document that round-trips.
  uint32_t state = 12345;
  auto next = [&state] { return state = state * 1664525u + 1013904223u; };
  const char alphabet[] = "{}[],:\"0123456789.-+eE \\tfnrua";
  size_t refused = 0, accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = kFullScene;
    for (int e = 0, edits = 1 + int(next() % 3); e < edits; ++e) {
      const size_t at = next() % text.size();
      const uint32_t how = next() % 3;
      if (how == 0) text[at] = alphabet[next() % (sizeof alphabet - 1)];
      if (how == 1) text.erase(at, 1 + next() % 4);
      if (how == 2) text.insert(at, text.substr(at, 1 + next() % 8));
      if (text.empty()) text = "x";
    }
    SceneDoc doc;
    std::string error;
    if (!parse(text, doc, error)) {
      ++refused;
      ASSERT_EQ(error.rfind("house.json: ", 0), 0u) << error;
      ASSERT_NE(error.find(" (line "), std::string::npos) << error;
      continue;
    }
    ++accepted;
    const std::string once = write(doc);
    SceneDoc again;
    ASSERT_TRUE(parse(once, again, error)) << error;
    ASSERT_EQ(write(again), once);
  }
  EXPECT_GT(refused, 2000u);
  EXPECT_GT(accepted, 10u);
}
